#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>

#include <memory>
#include <optional>

#include "Platform/ProcessWatch.h"
#include "Sessions/ClaudeSession.h"

namespace nubble {

class ProcessTable;

// The processes that session records name. Main thread only.
class SessionProcesses : public QObject {
    Q_OBJECT

public:
    // Which `watch` tells of, where there is one.
    SessionProcesses(const ProcessTable &processes, std::unique_ptr<ProcessWatch> watch);

    // Leaves out the sessions whose process has ended, or is another by now, and returns whether the end of
    // those that are left will be told.
    bool leaveOutEnded(QList<ClaudeSession> &sessions);

    // Fills in the terminals of those sessions that have a conversation in common.
    void nameSharedTerminals(QList<ClaudeSession> &sessions) const;

Q_SIGNALS:
    void ended(); // one that a session was left for

private:
    [[nodiscard]] bool isAnother(const ClaudeSession &session) const;

    const ProcessTable &m_processes;
    const std::unique_ptr<ProcessWatch> m_watch;
    QSet<qint32> m_ended; // that records still name
    QHash<qint32, std::optional<QString>>
        m_sameProcess; // found to be the record's, and their end will be told
};

} // namespace nubble
