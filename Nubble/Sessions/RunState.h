#pragma once

namespace nubble {

// What a session, or all of them together, is doing.
enum class RunState { Working, Completed, Idle };

} // namespace nubble
