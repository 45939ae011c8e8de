#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <sys/types.h>

#include "Platform/Outcome.h"
#include "Shell/SerialWorker.h"

namespace nubble {

class ProcessTable;
class Workspace;
enum class Activation;

// What of a session leads to its window.
struct SessionPlace {
    pid_t pid = 0;
    QString title{}; // as its row shows it
};

// Brings the application forward in which a session runs: the nearest of its process's ancestors that is one,
// else Claude's own desktop application. Main thread only; what has to be looked up is looked up beside it.
class ProcessActivator : public QObject {
    Q_OBJECT

public:
    using Told = std::function<void(const Outcome &)>;
    using ParentLookup = std::function<std::optional<pid_t>(pid_t)>; // any thread

    ProcessActivator(Workspace &workspace, ParentLookup parentOf, QObject *parent = nullptr);

    [[nodiscard]] bool canActivate() const; // whether this desktop brings anything forward

    // Brings the session's window, tab and pane forward. `told` is called once, later: done, or why not in a
    // sentence for the row. `token` is the desktop's activation token of a notification's click; empty
    // without one. A later wish replaces an earlier one that has not begun.
    void activate(const SessionPlace &place, Told told, const QByteArray &token = {});

    // Whether the session's window (and pane, where that can be known) is the one that the user works with.
    // `told` is called once, later.
    void askIfInFront(const SessionPlace &place, std::function<void(bool)> told);

    void waitForDone(); // with all that has been asked so far

    // Asks the program `ps`, and the kernel's table where that is not installed.
    [[nodiscard]] static ParentLookup askingPs(
        const ProcessTable &processes, const QString &ps = QStringLiteral("/bin/ps"));

Q_SIGNALS:
    void cameForward(pid_t pid); // the session of that process, whoever wished it; before he is told

private:
    [[nodiscard]] Activation bringForward(const QList<pid_t> &chain);
    [[nodiscard]] Activation activateClaudeDesktop();

    Workspace &m_workspace;
    ParentLookup m_parentOf;
    std::shared_ptr<Told> m_told; // who is told of the last wish; empty once that is done
    SerialWorker m_wishes{QStringLiteral("windows")};
    SerialWorker m_questions{QStringLiteral("windows in front")};
};

} // namespace nubble
