#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <sys/types.h>

#include "Platform/Outcome.h"
#include "Shell/SerialWorker.h"
#include "Terminals/WindowWay.h"

namespace nubble {

class Workspace;
enum class Activation;
struct ClaudeSession;
struct SessionDetail;

// What of a session leads to its window.
struct SessionPlace {
    pid_t pid = 0;
    QString title{}; // as its row shows it

    [[nodiscard]] static SessionPlace of(const ClaudeSession &session, const SessionDetail &detail);
};

// Brings forward where a session runs: the window, tab and pane of the nearest of its process's ancestors
// that is an application, else Claude's own desktop application. Main thread only; what has to be asked of
// other programs is asked beside it.
class ProcessActivator : public QObject {
    Q_OBJECT

public:
    using Told = std::function<void(const Outcome &)>;

    ProcessActivator(Workspace &workspace, TerminalLookups lookups, QObject *parent = nullptr);

    [[nodiscard]] bool canActivate() const; // whether this desktop brings anything forward

    // Brings the session's window, tab and pane forward. `told` is called once, later: done, or why not in a
    // sentence for the row. `token` is the desktop's activation token of a notification's click; empty
    // without one. A later wish replaces an earlier one that has not begun, which is told replaced().
    void activate(const SessionPlace &place, Told told, const QByteArray &token = {});

    [[nodiscard]] static Outcome replaced();

    // Whether the session's window (and pane, where that can be known) is the one that the user works with.
    // `told` is called once, later.
    void askIfInFront(const SessionPlace &place, std::function<void(bool)> told);

    // For the user's shell: brings a session that waits for a terminal into that one. Of the wish that was
    // told last, while that is told; else empty.
    [[nodiscard]] const QString &attachCommand() const { return m_attachCommand; }

    void waitForDone(); // with all that has been asked so far

Q_SIGNALS:
    void cameForward(pid_t pid); // the session of that process, whoever wished it; before he is told

private:
    [[nodiscard]] WindowWayFinder finder() const;
    [[nodiscard]] Outcome bringForward(
        const WindowWay &way, const SessionPlace &place, const QByteArray &token);
    [[nodiscard]] Activation activateClaudeDesktop();

    Workspace &m_workspace;
    TerminalLookups m_lookups;
    QString m_attachCommand;
    std::shared_ptr<Told> m_told; // who is told of the last wish; empty once that is done
    SerialWorker m_wishes{QStringLiteral("windows")};
    SerialWorker m_questions{QStringLiteral("windows in front")};
};

} // namespace nubble
