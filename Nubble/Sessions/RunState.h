#pragma once

namespace nubble {

// What a session is doing.
enum class RunState {
    Working,
    Waiting,   // for the user
    Completed, // a short while ago
    Idle
};

// What all sessions together are doing.
struct Activity {
    RunState overall = RunState::Idle; // the first in the order above that any of them is
    int waiting = 0;                   // how many wait, whatever the others do

    bool operator==(const Activity &) const = default;
};

} // namespace nubble
