#pragma once

#include <chrono>

namespace nubble {

class Defaults;

// What the user wants to be told of by the desktop's notices.
struct NoticePreferences {
    bool waiting = true;                                            // that a session waits
    bool done = true;                                               // that it has finished
    std::chrono::milliseconds doneAfter = std::chrono::seconds(30); // only runs that took longer
    bool sound = false;

    [[nodiscard]] static NoticePreferences in(const Defaults &defaults);
    static void setOn(Defaults &defaults, bool on); // both kinds

    [[nodiscard]] bool isOn() const { return waiting || done; }
};

} // namespace nubble
