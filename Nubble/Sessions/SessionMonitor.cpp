#include "Sessions/SessionMonitor.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <chrono>

#include "Platform/MainThread.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto blindPoll = 1s;
constexpr auto safetyPoll = 10s;
constexpr auto soon = 50ms;
constexpr auto firstPatience = 200ms;

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

bool worksIn(const QString &ownFolder, const ClaudeSession &session)
{
    if (session.cwd == ownFolder)
        return !ownFolder.isEmpty();
    // The same by another path, such as a home folder behind a link. Files are looked at only for this.
    const QFileInfo own(ownFolder);
    const QFileInfo folder(session.cwd);
    return folder.fileName() == own.fileName() && folder.exists() && folder == own;
}

QStringList below(const QStringList &folders, const QString &name)
{
    QStringList paths;
    for (const QString &folder : folders)
        paths.append(folder + name);
    return paths;
}

// Two folders may be one by different paths.
void join(SessionReading &whole, const SessionReading &more)
{
    whole.isBehind = whole.isBehind || more.isBehind;
    if (!whole.sessions || !more.sessions) {
        whole.sessions = whole.sessions ? whole.sessions : more.sessions;
        return;
    }
    QSet<SessionRun> known;
    for (const ClaudeSession &session : std::as_const(*whole.sessions))
        known.insert(session.run());
    for (const ClaudeSession &session : *more.sessions)
        if (!known.contains(session.run()))
            whole.sessions->append(session);
}

} // namespace

SessionMonitor::SessionMonitor(
    const QStringList &claudeFolders, const QString &ownFolder, const ProcessTable &processes,
    const Clock &clock, SessionWatches watches, QObject *parent)
    : QObject(parent), m_ownFolder(ownFolder), m_recordsWatch(std::move(watches.records)),
      m_processes(std::make_unique<SessionProcesses>(processes, std::move(watches.processes))),
      m_clock(&clock), m_details(below(claudeFolders, u"/projects"_s), clock, std::move(watches.transcripts)),
      m_worker(u"SessionMonitor"_s)
{
    for (const QString &folder : claudeFolders) {
        m_files.emplace_back(folder);
        m_recordsEntries.append(m_files.back().entries());
    }
    if (m_recordsWatch)
        connect(m_recordsWatch.get(), &FolderWatch::changed, this, &SessionMonitor::refresh);
    connect(m_processes.get(), &SessionProcesses::ended, this, &SessionMonitor::update);
    connect(&m_details, &SessionDetails::byIdChanged, this, &SessionMonitor::update);
    m_poll.callOnTimeout(this, &SessionMonitor::refresh);
    m_poll.start(blindPoll);
    m_soon.setSingleShot(true);
    m_soon.callOnTimeout(this, &SessionMonitor::refresh);
    m_expiry.setSingleShot(true);
    m_expiry.setTimerType(Qt::PreciseTimer);
    m_expiry.callOnTimeout(this, &SessionMonitor::update);
    refresh();
    m_worker.waitForDone(firstPatience); // nobody is to be told that there are none before
}

SessionMonitor::SessionMonitor(const SessionsSample &sample, QObject *parent)
    : QObject(parent), m_clock(nullptr), m_details(sample.details), m_sessions(sample.sessions),
      m_recentlyCompleted(sample.recentlyCompleted), m_worker(u"SessionMonitor"_s)
{
}

RunState SessionMonitor::runState(const ClaudeSession &session) const
{
    if (session.isBusy())
        return RunState::Working;
    if (session.isWaiting())
        return RunState::Waiting;
    return m_recentlyCompleted.contains(session.run()) ? RunState::Completed : RunState::Idle;
}

Activity SessionMonitor::activity() const
{
    Activity activity;
    for (const ClaudeSession &session : m_sessions) {
        activity.overall = std::min(activity.overall, runState(session));
        activity.waiting += session.isWaiting();
    }
    return activity;
}

void SessionMonitor::refresh()
{
    assertMainThread("Nubble/Sessions/SessionMonitor");
    if (!m_processes)
        return;
    m_worker.addLatest(
        [this](const std::stop_token &stop) { return look(stop); }, [this](const Look &look) { take(look); });
}

// Watched before it is read, so that nothing goes by between the two.
SessionMonitor::Look SessionMonitor::look(const std::stop_token &stop)
{
    Look look{.isTold = m_recordsWatch && m_recordsWatch->watch(m_recordsEntries)};
    for (SessionFiles &files : m_files)
        join(look.reading, files.read(stop));
    if (look.reading.sessions)
        look.reading.sessions->removeIf(
            [this](const ClaudeSession &session) { return worksIn(m_ownFolder, session); });
    return look;
}

void SessionMonitor::take(const Look &look)
{
    m_look = look;
    if (look.reading.isBehind)
        m_soon.start(soon);
    update();
    if (look.reading.sessions)
        refreshDetails(false);
}

void SessionMonitor::update()
{
    assertMainThread("Nubble/Sessions/SessionMonitor");
    QList<ClaudeSession> live = m_look.reading.sessions.value_or(QList<ClaudeSession>());
    const bool endsAreTold = m_processes->leaveOutEnded(live);
    const TimePoint now = m_clock->now();
    addTranscribedWork(live, now);
    m_processes->nameSharedTerminals(live);
    const RunNews news = m_look.reading.sessions ? m_runs.update(live, now) : RunNews();
    publishCompletions(now);
    publish(newestFirst(live));
    tell(news);
    pollEvery(m_look.isTold && endsAreTold && m_details.isTold() ? safetyPoll : blindPoll);
}

void SessionMonitor::pollEvery(std::chrono::milliseconds interval)
{
    if (m_poll.intervalAsDuration() == interval)
        return;
    m_poll.setTimerType(interval == blindPoll ? Qt::CoarseTimer : Qt::VeryCoarseTimer);
    m_poll.start(interval);
}

void SessionMonitor::refreshDetails(bool force)
{
    m_details.update(m_sessions, force);
}

void SessionMonitor::waitForDone()
{
    m_worker.waitForDone();
    m_details.waitForDone();
}

void SessionMonitor::publish(QList<ClaudeSession> sessions)
{
    if (sessions == m_sessions)
        return;
    m_sessions = std::move(sessions);
    Q_EMIT sessionsChanged();
}

// Those that do not tell what they do are known by their transcripts.
void SessionMonitor::addTranscribedWork(QList<ClaudeSession> &sessions, TimePoint now) const
{
    for (ClaudeSession &session : sessions) {
        const auto work = m_details.of(session).work;
        if (session.status || !work)
            continue;
        const bool works = now < work->until;
        session.status = works ? u"busy"_s : u"idle"_s;
        const TimePoint since = works ? times(session).runningSince.value_or(work->since) : work->since;
        session.updatedAt = static_cast<double>(since.time_since_epoch().count());
    }
}

void SessionMonitor::publishCompletions(TimePoint now)
{
    if (const auto next = m_runs.nextExpiry(now))
        m_expiry.start(*next);
    else
        m_expiry.stop();
    QSet<SessionRun> completed = m_runs.recentlyCompleted(now);
    if (completed == m_recentlyCompleted)
        return;
    m_recentlyCompleted = std::move(completed);
    Q_EMIT recentlyCompletedChanged();
}

void SessionMonitor::tell(const RunNews &news)
{
    for (const ClaudeSession &session : news.begunToWait)
        Q_EMIT beganToWait(session);
    for (const RunNews::Ended &run : news.ended)
        Q_EMIT runEnded(run.session, run.length);
}

} // namespace nubble
