#pragma once

namespace nubble {

// What a session is doing.
enum class RunState {
    Waiting, // for the user
    Working,
    Completed, // a short while ago
    Idle
};

// What all sessions together are doing.
struct Activity {
    RunState overall = RunState::Idle; // Working if any works, else Completed if any has, else Idle
    bool waiting = false;              // whether any waits, whatever the others do

    bool operator==(const Activity &) const = default;
};

} // namespace nubble
