#pragma once

#include <QList>
#include <QString>

#include <sys/types.h>

namespace nubble {

// A process that owns at least one managed top-level window.
struct RunningApplication {
    pid_t pid = 0;
    QString identifier; // WM_CLASS class, such as "XTerm"
    QString name;       // WM_CLASS instance, such as "xterm"

    bool operator==(const RunningApplication &) const = default;
};

// The desktop's running applications. Main thread only. Failures are silent: an application that has gone is
// not listed, and activating it does nothing.
class Workspace {
public:
    virtual ~Workspace() = default;

    [[nodiscard]] virtual QList<RunningApplication> runningApplications() const = 0; // in the desktop's order
    [[nodiscard]] virtual bool isRunningApplication(pid_t pid) const = 0;

    // Brings all of the application's windows forward, also iconified ones and ones on another desktop, and
    // gives the keyboard to the one used last.
    virtual void activate(pid_t pid) = 0;
};

} // namespace nubble
