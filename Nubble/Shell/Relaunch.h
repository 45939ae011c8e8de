#pragma once

#include <QStringList>

namespace nubble {

// Starting this program again, the way in which it was started.
struct Relaunch {
    QString program;       // absolute path of the executable
    QStringList arguments; // without the program's name

    // Taken early: when a package update has replaced the executable, its path can no longer be asked for.
    [[nodiscard]] static Relaunch ofThisProcess();

    // Starts a detached shell that waits until this process has had time to end, and then runs the program. A
    // failure to start it is ignored. The caller quits afterwards.
    void now() const;
};

} // namespace nubble
