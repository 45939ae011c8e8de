#pragma once

#include <QList>
#include <QString>

#include <optional>
#include <sys/types.h>

namespace nubble {

// A program that owns at least one managed top-level window.
struct RunningApplication {
    std::optional<pid_t> pid; // where the desktop tells it
    QString identifier;       // such as "XTerm"
    QString name;             // such as "xterm"

    bool operator==(const RunningApplication &) const = default;
};

// What became of the wish to bring an application forward.
enum class Activation {
    Requested, // the desktop has been asked to, and knows the application's windows
    NotFound,  // there is no such application with a window
    Impossible // this desktop does not let programs bring others forward
};

// A window that a process is seen in.
struct WantedWindow {
    QList<pid_t> chain; // the process and its ancestors: the nearest that has windows owns this one
    quint32 window = 0; // the desktop's number for it, believed where it is that owner's; 0: unknown
    QString title{};    // what its title may hold; empty: unknown
    QByteArray token{}; // the desktop's leave to bring it forward, where a click elsewhere gave one
};

// The desktop's running applications. Main thread only. Activating brings all of an application's windows
// forward, also iconified ones and ones on another desktop, and gives the keyboard to the one used last, also
// when the panel has it.
class Workspace {
public:
    virtual ~Workspace() = default;

    // Whether bringing an application forward is possible at all, as far as is known before it is tried.
    [[nodiscard]] virtual bool canActivate() const = 0;

    [[nodiscard]] virtual QList<RunningApplication> runningApplications() const = 0; // in the desktop's order
    [[nodiscard]] virtual Activation activate(const RunningApplication &application) = 0;

    // The application that owns the window, with the keyboard for that window where it can be told apart.
    [[nodiscard]] virtual Activation activateNearest(const WantedWindow &wanted) = 0;

    // Whether the user works with that window, and with no other of the same application.
    [[nodiscard]] virtual bool isInFront(const WantedWindow &wanted) const = 0;

    // The one that the user works with, which may be this program. None where the desktop does not tell.
    [[nodiscard]] virtual std::optional<RunningApplication> frontApplication() const = 0;

    // Of the foremost ordinary window on the screen that belongs to that process, as the process has written
    // it: it may hold any character, and is cut off after a thousand bytes. None without such a window or
    // title.
    [[nodiscard]] virtual std::optional<QString> windowTitle(pid_t pid) const = 0;
};

} // namespace nubble
