#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <memory>
#include <utility>
#include <vector>

#include "Platform/Clock.h"
#include "Platform/FolderWatch.h"
#include "Sessions/ClaudeSession.h"
#include "Sessions/RunState.h"
#include "Sessions/RunTracker.h"
#include "Sessions/SessionDetails.h"
#include "Sessions/SessionFiles.h"
#include "Sessions/SessionProcesses.h"
#include "Shell/SerialWorker.h"

namespace nubble {

class ProcessTable;

// What a monitor without any files has to show.
struct SessionsSample {
    QList<ClaudeSession> sessions{};
    QSet<SessionRun> recentlyCompleted{};
    QHash<QString, SessionDetail> details{}; // by session id
};

// What tells that there is something to read.
struct SessionWatches {
    std::unique_ptr<FolderWatch> records{};
    std::unique_ptr<FolderWatch> transcripts{};
    std::unique_ptr<ProcessWatch> processes{};
};

// The ordered list of live sessions and the set of those that finished within the last two minutes. Reads its
// folders when the watches tell of changes, and every ten seconds to be sure; each second where a watch is
// missing or cannot tell all. Main thread only; files are read on a worker, for the first time from the
// constructor on, which waits 200 ms for it. Every failure is silent and looked at again at the next reading.
class SessionMonitor : public QObject {
    Q_OBJECT

public:
    // Of Claude Code's folders as claudeFolders() gives them. Sessions that work in `ownFolder` are this
    // program's and left out.
    SessionMonitor(
        const QStringList &claudeFolders, const QString &ownFolder, const ProcessTable &processes,
        const Clock &clock, SessionWatches watches = {}, QObject *parent = nullptr);
    // Shows that and never anything else: for pictures of the card.
    explicit SessionMonitor(const SessionsSample &sample, QObject *parent = nullptr);

    [[nodiscard]] const QList<ClaudeSession> &sessions() const { return m_sessions; } // newest activity first
    [[nodiscard]] const QSet<SessionRun> &recentlyCompleted() const { return m_recentlyCompleted; }
    [[nodiscard]] RunState runState(const ClaudeSession &session) const;
    [[nodiscard]] RunTimes times(const ClaudeSession &session) const { return m_runs.times(session.run()); }
    [[nodiscard]] Activity activity() const;
    [[nodiscard]] const SessionDetails &details() const { return m_details; }

    void refresh();                  // returns at once
    void refreshDetails(bool force); // of the sessions as last read; see SessionDetails::update
    void waitForDone();              // blocks until all that was asked for is read and published

Q_SIGNALS:
    void sessionsChanged();
    void recentlyCompletedChanged();
    // After the two above, and never of what was so when this was made.
    void beganToWait(const nubble::ClaudeSession &session);
    void runEnded(const nubble::ClaudeSession &session, std::chrono::milliseconds length);

private:
    // What a look at the folder has brought.
    struct Look {
        SessionReading reading{};
        bool isTold = false; // of every change since
    };

    [[nodiscard]] Look look(const std::stop_token &stop); // on the worker
    void take(const Look &look);
    void update();
    void pollEvery(std::chrono::milliseconds interval);
    void tell(const RunNews &news);
    void addTranscribedWork(QList<ClaudeSession> &sessions, TimePoint now) const;
    void publishCompletions(TimePoint now);
    void publish(QList<ClaudeSession> sessions);

    // The worker's alone.
    std::vector<SessionFiles> m_files; // one of each folder
    const QString m_ownFolder;
    QList<WatchedEntries> m_recordsEntries;
    const std::unique_ptr<FolderWatch> m_recordsWatch; // may be none

    const std::unique_ptr<SessionProcesses> m_processes; // none for a sample, as the next
    const Clock *const m_clock;
    SessionDetails m_details;
    Look m_look; // the last one
    QList<ClaudeSession> m_sessions;
    QSet<SessionRun> m_recentlyCompleted;
    RunTracker m_runs;
    QTimer m_poll{this};
    QTimer m_soon;   // runs while the last look is known to be behind
    QTimer m_expiry; // of the oldest completion
    SerialWorker m_worker;
};

} // namespace nubble
