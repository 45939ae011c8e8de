#include "Sessions/NextSession.h"

#include <QPointer>
#include <QSet>

#include <algorithm>

#include "Sessions/SessionMonitor.h"
#include "Sessions/SessionTexts.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr qsizetype mostAsked = 10; // whether they are in front, which takes a while each

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
    tryFirst(inNeed().mid(0, mostAsked), noneInNeed(), told);
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

void NextSession::tryFirst(
    QList<ClaudeSession> sessions, const Outcome &otherwise, const ProcessActivator::Told &told)
{
    if (sessions.isEmpty()) {
        told(otherwise);
        return;
    }
    const ClaudeSession first = sessions.takeFirst();
    const SessionPlace place{first.pid, rowTitle(first, m_monitor.details().byId().value(first.sessionId))};
    const auto goOn = [self = QPointer(this), otherwise, sessions, told](const Outcome &outcome) {
        if (!self || outcome.isDone() || outcome == ProcessActivator::replaced())
            told(outcome);
        else
            self->tryFirst(sessions, otherwise == noneInNeed() ? outcome : otherwise, told);
    };
    m_activator.askIfInFront(
        place, [self = QPointer(this), place, otherwise, sessions, told, goOn](bool isInFront) {
            if (self && isInFront) {
                self->noteSeen(place.pid);
                self->tryFirst(sessions, otherwise, told);
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
