#include "Sessions/SessionMonitor.h"

#include <QFileInfo>

#include <algorithm>
#include <chrono>

#include "Platform/Logging.h"
#include "Platform/MainThread.h"
#include "Platform/ProcessTable.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto pollInterval = 1s;
constexpr auto completionLasts = 120s;

// Sessions of equal activity keep their order.
QList<ClaudeSession> newestFirst(const QList<ClaudeSession> &sessions)
{
    QList<const ClaudeSession *> order;
    order.reserve(sessions.size());
    for (const ClaudeSession &session : sessions)
        order.append(&session);
    std::stable_sort(order.begin(), order.end(), [](const ClaudeSession *a, const ClaudeSession *b) {
        return a->lastActivity() > b->lastActivity();
    });
    QList<ClaudeSession> sorted;
    sorted.reserve(sessions.size());
    for (const ClaudeSession *session : order)
        sorted.append(*session);
    return sorted;
}

} // namespace

SessionMonitor::SessionMonitor(
    const QString &sessionsFolder, const QString &projectsFolder, const QString &ownFolder,
    const ProcessTable &processes, const Clock &clock, QObject *parent)
    : QObject(parent), m_files(sessionsFolder), m_ownFolder(ownFolder), m_processes(&processes),
      m_clock(&clock), m_details(projectsFolder, clock)
{
    refresh();
    m_timer.callOnTimeout(this, &SessionMonitor::refresh);
    m_timer.start(pollInterval);
}

SessionMonitor::SessionMonitor(const SessionsSample &sample, QObject *parent)
    : QObject(parent), m_files(QString()), m_processes(nullptr), m_clock(nullptr), m_details(sample.details),
      m_sessions(sample.sessions), m_recentlyCompleted(sample.recentlyCompleted)
{
}

RunState SessionMonitor::runState(const ClaudeSession &session) const
{
    return session.isWaiting() ? RunState::Waiting : workState(session);
}

RunState SessionMonitor::workState(const ClaudeSession &session) const
{
    if (session.isBusy())
        return RunState::Working;
    return m_recentlyCompleted.contains(session.sessionId) ? RunState::Completed : RunState::Idle;
}

Activity SessionMonitor::activity() const
{
    Activity activity;
    for (const ClaudeSession &session : m_sessions) {
        activity.overall = std::min(activity.overall, workState(session));
        activity.waiting = activity.waiting || session.isWaiting();
    }
    return activity;
}

void SessionMonitor::refresh()
{
    assertMainThread("Nubble/Sessions/SessionMonitor");
    if (!m_processes)
        return;
    auto live = m_files.read();
    if (!live) {
        publish({});
        return;
    }
    live->removeIf([this](const ClaudeSession &session) { return isOwn(session); });
    leaveOutEnded(*live);
    trackRuns(*live);
    publish(newestFirst(*live));
    refreshDetails(false);
}

void SessionMonitor::refreshDetails(bool force)
{
    m_details.update(m_sessions, force);
}

void SessionMonitor::waitForDetails()
{
    m_details.waitForDone();
}

bool SessionMonitor::isOwn(const ClaudeSession &session) const
{
    if (session.cwd == m_ownFolder)
        return !m_ownFolder.isEmpty();
    // The same by another path, such as a home folder behind a link. Files are looked at only for this.
    const QFileInfo own(m_ownFolder);
    const QFileInfo folder(session.cwd);
    return folder.fileName() == own.fileName() && folder.exists() && folder == own;
}

void SessionMonitor::leaveOutEnded(QList<ClaudeSession> &sessions)
{
    QSet<qint32> ended;
    sessions.removeIf([&](const ClaudeSession &session) {
        if (m_processes->canSignal(session.pid))
            return false;
        if (!m_ended.contains(session.pid))
            qCDebug(logSessions) << "session" << session.sessionId << "has no process" << session.pid;
        ended.insert(session.pid);
        return true;
    });
    m_ended = std::move(ended);
}

void SessionMonitor::publish(QList<ClaudeSession> sessions)
{
    if (sessions == m_sessions)
        return;
    m_sessions = std::move(sessions);
    Q_EMIT sessionsChanged();
}

void SessionMonitor::trackRuns(const QList<ClaudeSession> &live)
{
    const TimePoint now = m_clock->now();
    QSet<QString> ids;
    QSet<Run> busy;
    for (const ClaudeSession &session : live) {
        ids.insert(session.sessionId);
        if (session.isBusy())
            busy.insert({session.sessionId, session.pid});
    }
    for (const ClaudeSession &session : live) {
        const Run run(session.sessionId, session.pid);
        if (m_busy.contains(run) && !busy.contains(run))
            m_completedAt.insert(session.sessionId, now);
    }
    m_busy = std::move(busy);
    forgetCompletions(ids, now);
}

void SessionMonitor::forgetCompletions(const QSet<QString> &ids, TimePoint now)
{
    m_completedAt.removeIf(
        [&](const auto &each) { return !ids.contains(each.key()) || now - each.value() >= completionLasts; });
    QSet<QString> completed(m_completedAt.keyBegin(), m_completedAt.keyEnd());
    if (completed == m_recentlyCompleted)
        return;
    m_recentlyCompleted = std::move(completed);
    Q_EMIT recentlyCompletedChanged();
}

} // namespace nubble
