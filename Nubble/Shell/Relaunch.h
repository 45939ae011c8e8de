#pragma once

#include <QStringList>

namespace nubble {

// Starting this program again.
struct Relaunch {
    QString program;       // absolute path of the executable
    QStringList arguments; // without the program's name

    // The program as it was called: the small one, which has become this one, where it names its path. Taken
    // early: when a package update has replaced the executable, its path can no longer be asked for.
    // Needs the application object.
    [[nodiscard]] static Relaunch ofThisProgram(const QStringList &arguments);

    // Starts a detached shell that waits until this process has had time to end, and then runs the program. A
    // failure to start it is ignored. The caller quits afterwards.
    void now() const;

    // Starts one more process at once, which outlives the terminal of this one and keeps nothing of it open.
    [[nodiscard]] bool startDetached() const;
};

} // namespace nubble
