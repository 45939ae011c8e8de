#pragma once

#include <QHash>
#include <QObject>

#include <chrono>

#include "Sessions/ClaudeSession.h"

namespace nubble {

class Defaults;
class DesktopNotices;
class ProcessActivator;
class SessionMonitor;

// Calls the user, by the desktop's notices, to a session that has begun to wait or has ended a long run: a
// second later, if it still does, and not while the user works with it. A click brings it forward. There is
// one notice for each session, and one for all when they are many at once; it goes when the session goes on
// or comes forward. All that this is made from outlives it. Main thread only.
class SessionNotices : public QObject {
    Q_OBJECT

public:
    SessionNotices(
        const SessionMonitor &monitor, ProcessActivator &activator, DesktopNotices &notices,
        const Defaults &defaults, QObject *parent = nullptr);

    void follow(); // the sessions and the preferences: what is no longer so, or not wanted, goes

Q_SIGNALS:
    void listRequested(); // by a click on the notice for many

private:
    enum class Reason { Waits, Done };
    struct Call {
        Reason reason = Reason::Waits;
        int turn = 0;           // of what has happened; the newest counts
        bool isPending = false; // nothing has been decided about it
        quint32 notice = 0;     // which is up for it; 0 for none
    };

    void begin(const ClaudeSession &session, Reason reason);
    void decide(const SessionRun &run, int turn);
    void show(const ClaudeSession &session);
    void showTogether();
    void drop(const SessionRun &run);
    void withdrawIfUnused(quint32 notice);
    void react(quint32 notice, const QByteArray &token);
    void bringForward(const ClaudeSession &session, const QByteArray &token);
    [[nodiscard]] const ClaudeSession *sessionOf(const SessionRun &run) const;
    [[nodiscard]] bool isCurrent(const SessionRun &run, int turn) const;
    [[nodiscard]] QString soundFor(Reason reason) const;

    const SessionMonitor &m_monitor;
    ProcessActivator &m_activator;
    DesktopNotices &m_notices;
    const Defaults &m_defaults;
    QHash<SessionRun, Call> m_calls;
    int m_turns = 0;
    quint32 m_lastNotice;
};

} // namespace nubble
