#include "Sessions/SessionProcesses.h"

#include "Platform/Logging.h"
#include "Platform/ProcessTable.h"

using namespace Qt::StringLiterals;

namespace nubble {

SessionProcesses::SessionProcesses(const ProcessTable &processes, std::unique_ptr<ProcessWatch> watch)
    : m_processes(processes), m_watch(std::move(watch))
{
    if (m_watch)
        connect(m_watch.get(), &ProcessWatch::ended, this, &SessionProcesses::ended);
}

bool SessionProcesses::leaveOutEnded(QList<ClaudeSession> &sessions)
{
    QSet<qint32> running;
    for (const ClaudeSession &session : sessions)
        if (m_processes.canSignal(session.pid) && !isAnother(session))
            running.insert(session.pid);
    const bool endsAreTold = m_watch && m_watch->watch(running);
    QSet<qint32> ended;
    sessions.removeIf([&](const ClaudeSession &session) {
        if (running.contains(session.pid) && !(m_watch && m_watch->hasEnded(session.pid)))
            return false;
        if (!m_ended.contains(session.pid))
            qCDebug(logSessions) << "session" << session.sessionId << "has no process" << session.pid;
        ended.insert(session.pid);
        return true;
    });
    m_ended = std::move(ended);
    m_sameProcess.clear();
    if (endsAreTold)
        for (const ClaudeSession &session : sessions)
            m_sameProcess.insert(session.pid, session.procStart);
    return endsAreTold;
}

// A process that has been given the id of one that is gone. Its table is slow to read.
bool SessionProcesses::isAnother(const ClaudeSession &session) const
{
    const auto known = m_sameProcess.constFind(session.pid);
    if (known != m_sameProcess.cend() && *known == session.procStart)
        return false;
    bool isNumber = false;
    const quint64 birth = session.procStart.value_or(QString()).toULongLong(&isNumber);
    const auto process = isNumber ? m_processes.find(session.pid) : std::nullopt;
    return process && process->birth != 0 && process->birth != birth;
}

void SessionProcesses::nameSharedTerminals(QList<ClaudeSession> &sessions) const
{
    QHash<QString, int> terminals;
    for (const ClaudeSession &session : sessions)
        ++terminals[session.sessionId];
    for (ClaudeSession &session : sessions) {
        if (terminals.value(session.sessionId) == 1)
            continue;
        const auto process = m_processes.find(session.pid);
        session.terminal =
            process && !process->terminal.isEmpty() ? process->terminal : u"process %1"_s.arg(session.pid);
    }
}

} // namespace nubble
