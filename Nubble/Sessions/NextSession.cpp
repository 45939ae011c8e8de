#include "Sessions/NextSession.h"

#include <QPointer>
#include <QSet>

#include <algorithm>

#include "Sessions/SessionMonitor.h"
#include "Sessions/SessionTexts.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto patience = 2s; // with what hangs: a window that comes much later would disturb

Outcome noneInNeed()
{
    return Outcome::failed(u"no session needs you"_s);
}

} // namespace

NextSession::NextSession(
    const SessionMonitor &monitor, ProcessActivator &activator, const Clock &clock, QObject *parent)
    : QObject(parent), m_monitor(monitor), m_activator(activator), m_clock(clock)
{
    connect(&activator, &ProcessActivator::cameForward, this, &NextSession::noteSeen);
}

void NextSession::bringForward(const ProcessActivator::Told &told)
{
    tryFirst({inNeed(), noneInNeed(), QDeadlineTimer(patience)}, told);
}

QList<ClaudeSession> NextSession::inNeed() const
{
    QList<ClaudeSession> waiting;
    QList<ClaudeSession> finished;
    for (const ClaudeSession &session : m_monitor.sessions()) {
        const RunTimes times = m_monitor.times(session);
        if (times.waitingSince)
            waiting.append(session);
        else if (!session.isBusy() && times.finishedAt > m_seen.value(session.pid, TimePoint::min()))
            finished.append(session);
    }
    std::ranges::stable_sort(
        waiting, {}, [this](const ClaudeSession &session) { return m_monitor.times(session).waitingSince; });
    std::ranges::stable_sort(finished, std::ranges::greater(), [this](const ClaudeSession &session) {
        return m_monitor.times(session).finishedAt;
    });
    return waiting + finished;
}

void NextSession::tryFirst(Search search, const ProcessActivator::Told &told)
{
    if (search.sessions.isEmpty() || search.end.hasExpired()) {
        told(search.otherwise);
        return;
    }
    const ClaudeSession first = search.sessions.takeFirst();
    const SessionPlace place = SessionPlace::of(first, m_monitor.details().of(first));
    const auto goOn = [self = QPointer(this), search, told](const Outcome &outcome) mutable {
        if (!self || outcome.isDone() || outcome == ProcessActivator::replaced()) {
            told(outcome);
            return;
        }
        if (search.otherwise == noneInNeed())
            search.otherwise = outcome;
        self->tryFirst(search, told);
    };
    m_activator.askIfInFront(place, [self = QPointer(this), place, search, told, goOn](bool isInFront) {
        if (self && isInFront) {
            self->noteSeen(place.pid);
            self->tryFirst(search, told);
        } else if (self)
            self->m_activator.activate(place, goOn);
    });
}

void NextSession::noteSeen(pid_t pid)
{
    m_seen.insert(pid, m_clock.now());
    QSet<pid_t> live;
    for (const ClaudeSession &session : m_monitor.sessions())
        live.insert(session.pid);
    m_seen.removeIf([&live](const auto &seen) { return !live.contains(seen.key()); });
}

} // namespace nubble
