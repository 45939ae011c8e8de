#pragma once

// What the running instance's control object is called on the session bus, for both of its ends.
namespace nubble::ControlNames {

inline constexpr auto *objectPath = "/com/brevandel/nubble";
inline constexpr auto *interface = "com.brevandel.nubble.Control";
inline constexpr auto *statusChanged = "StatusChanged";

} // namespace nubble::ControlNames
