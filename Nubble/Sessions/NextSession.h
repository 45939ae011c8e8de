#pragma once

#include <QDeadlineTimer>
#include <QHash>
#include <QList>
#include <QObject>

#include "Platform/Clock.h"
#include "Sessions/ClaudeSession.h"
#include "Sessions/ProcessActivator.h"

namespace nubble {

class SessionMonitor;

// Brings the session forward that needs the user most. All that this is made from outlives it. Main thread
// only.
class NextSession : public QObject {
    Q_OBJECT

public:
    NextSession(
        const SessionMonitor &monitor, ProcessActivator &activator, const Clock &clock,
        QObject *parent = nullptr);

    // The one that has waited longest, else the one that finished last and has not been brought forward
    // since; one that is in front already, or cannot come there, is passed over. `told` is called once,
    // perhaps at once: done, or why not.
    void bringForward(const ProcessActivator::Told &told);

private:
    struct Search {
        QList<ClaudeSession> sessions;
        Outcome otherwise; // is told where none of them comes forward
        QDeadlineTimer end;
    };

    [[nodiscard]] QList<ClaudeSession> inNeed() const; // the neediest first
    void tryFirst(Search search, const ProcessActivator::Told &told);
    void noteSeen(pid_t pid);

    const SessionMonitor &m_monitor;
    ProcessActivator &m_activator;
    const Clock &m_clock;
    QHash<pid_t, TimePoint> m_seen; // of live sessions, when they last came forward
};

} // namespace nubble
