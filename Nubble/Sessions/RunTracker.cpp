#include "Sessions/RunTracker.h"

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr std::chrono::milliseconds completionLasts = 120s;

bool isRecent(const RunTimes &times, TimePoint now)
{
    return times.finishedAt && now - *times.finishedAt < completionLasts;
}

// When the session itself says that it became what it is.
TimePoint becameSo(const ClaudeSession &session, TimePoint now)
{
    return std::min(now, timePointOf(session.statusChange()));
}

} // namespace

RunNews RunTracker::update(const QList<ClaudeSession> &live, TimePoint now)
{
    RunNews news;
    QHash<SessionRun, Seen> seen;
    for (const ClaudeSession &session : live) {
        const auto known = m_seen.constFind(session.run());
        const bool isKnown = known != m_seen.cend();
        Seen &one = *seen.insert(session.run(), {session, isKnown ? known->times : RunTimes()});
        follow(one, isKnown ? &*known : nullptr, now, news);
    }
    m_seen = std::move(seen);
    return std::exchange(m_hasLooked, true) ? news : RunNews();
}

// One that waits for an answer has not finished, whatever it did before; if no more work follows, it has.
void RunTracker::follow(Seen &seen, const Seen *before, TimePoint now, RunNews &news)
{
    const ClaudeSession &session = seen.session;
    RunTimes &times = seen.times;
    const bool wasInRun = times.runningSince.has_value();
    const bool isInRun = session.isBusy() || (wasInRun && session.isWaiting());
    if ((wasInRun && !isInRun) || (before && hasMissedRun(*before, session))) {
        times.finishedAt = now;
        const auto length = becameSo(session, now) - times.runningSince.value_or(becameSo(session, now));
        news.ended.append({session, std::max(length, 0ms)});
    }
    if (!isInRun)
        times.runningSince.reset();
    else if (!wasInRun)
        times.runningSince = becameSo(session, now);
    if (!session.isWaiting())
        times.waitingSince.reset();
    else if (!times.waitingSince) {
        times.waitingSince = becameSo(session, now);
        news.begunToWait.append(session);
    }
}

// A run between two looks leaves nothing but a new time.
bool RunTracker::hasMissedRun(const Seen &before, const ClaudeSession &now)
{
    return !before.times.runningSince && now.status == QStringView(u"idle")
        && before.session.status == now.status && before.session.name == now.name
        && before.session.statusChange() < now.statusChange();
}

QSet<SessionRun> RunTracker::recentlyCompleted(TimePoint now) const
{
    QSet<SessionRun> completed;
    for (auto each = m_seen.cbegin(); each != m_seen.cend(); ++each)
        if (isRecent(each->times, now))
            completed.insert(each.key());
    return completed;
}

std::optional<std::chrono::milliseconds> RunTracker::nextExpiry(TimePoint now) const
{
    std::optional<std::chrono::milliseconds> next;
    for (const Seen &each : m_seen)
        if (isRecent(each.times, now))
            next = std::min(next.value_or(completionLasts), *each.times.finishedAt + completionLasts - now);
    return next;
}

} // namespace nubble
