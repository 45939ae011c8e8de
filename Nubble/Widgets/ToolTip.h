#pragma once

class QString;

namespace nubble {

// A text for a tool tip as it stands, whatever markup it looks like; long ones are wrapped. Nothing of
// nothing.
[[nodiscard]] QString toolTipOf(const QString &text);

} // namespace nubble
