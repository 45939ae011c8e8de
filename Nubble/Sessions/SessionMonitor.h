#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <utility>

#include "Platform/Clock.h"
#include "Sessions/ClaudeSession.h"
#include "Sessions/RunState.h"
#include "Sessions/SessionDetails.h"
#include "Sessions/SessionFiles.h"

namespace nubble {

class ProcessTable;

// What a monitor without any files has to show.
struct SessionsSample {
    QList<ClaudeSession> sessions{};
    QSet<QString> recentlyCompleted{};       // session ids
    QHash<QString, SessionDetail> details{}; // by session id
};

// The ordered list of live sessions and the set of those that finished within the last two minutes. Polls its
// folder once a second, for the first time while it is constructed. Main thread only; every failure is silent
// and looked at again at the next poll.
class SessionMonitor : public QObject {
    Q_OBJECT

public:
    // Sessions that work in `ownFolder` are this program's and left out.
    SessionMonitor(
        const QString &sessionsFolder, const QString &projectsFolder, const QString &ownFolder,
        const ProcessTable &processes, const Clock &clock, QObject *parent = nullptr);
    // Shows that and never anything else: for pictures of the card.
    explicit SessionMonitor(const SessionsSample &sample, QObject *parent = nullptr);

    [[nodiscard]] const QList<ClaudeSession> &sessions() const { return m_sessions; } // newest activity first
    [[nodiscard]] const QSet<QString> &recentlyCompleted() const
    {
        return m_recentlyCompleted;
    } // session ids
    [[nodiscard]] RunState runState(const ClaudeSession &session) const;
    [[nodiscard]] RunState workState(const ClaudeSession &session) const; // the same but for waiting
    [[nodiscard]] Activity activity() const;
    [[nodiscard]] const SessionDetails &details() const { return m_details; }

    void refresh();
    void refreshDetails(bool force); // of the sessions as last read; see SessionDetails::update
    void waitForDetails();           // blocks until they are read and published

Q_SIGNALS:
    void sessionsChanged();
    void recentlyCompletedChanged();

private:
    // A terminal: two of them can have the same conversation open, one working and one not.
    using Run = std::pair<QString, qint32>;

    [[nodiscard]] bool isOwn(const ClaudeSession &session) const;
    void leaveOutEnded(QList<ClaudeSession> &sessions);
    void trackRuns(const QList<ClaudeSession> &live);
    void forgetCompletions(const QSet<QString> &ids, TimePoint now);
    void publish(QList<ClaudeSession> sessions);

    SessionFiles m_files;
    const QString m_ownFolder;
    const ProcessTable *const m_processes; // none for a sample, as the next
    const Clock *const m_clock;
    SessionDetails m_details;
    QList<ClaudeSession> m_sessions;
    QSet<QString> m_recentlyCompleted;
    QSet<qint32> m_ended;                    // process ids that records still name
    QSet<Run> m_busy;                        // at the last poll
    QHash<QString, TimePoint> m_completedAt; // by session id
    QTimer m_timer;
};

} // namespace nubble
