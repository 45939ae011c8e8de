#include "Sessions/SessionNotices.h"

#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <utility>

#include "Platform/DesktopNotices.h"
#include "Platform/MainThread.h"
#include "Sessions/NoticePreferences.h"
#include "Sessions/ProcessActivator.h"
#include "Sessions/SessionMonitor.h"
#include "Sessions/SessionTexts.h"
#include "Shell/OneLine.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto patience = 1s; // with a question that answers itself
constexpr qsizetype mostApart = 3;
constexpr quint32 together = 1; // the notice for many; those for one have higher ids
constexpr qsizetype longestTitle = 100;
constexpr qsizetype longestText = 300;

QString labelled(const QString &label, const std::optional<QString> &text)
{
    return text ? label + u": " + shortened(*text, longestText) : label;
}

QString countText(qsizetype count)
{
    return QString::number(count) + (count == 1 ? u" session"_s : u" sessions"_s);
}

QString titleForMany(qsizetype waiting, qsizetype done)
{
    if (done == 0)
        return countText(waiting) + (waiting == 1 ? u" waits for you"_s : u" wait for you"_s);
    const QString finished = countText(done) + (done == 1 ? u" has finished"_s : u" have finished"_s);
    return waiting == 0 ? finished : titleForMany(waiting, 0) + u", "_s + finished;
}

} // namespace

SessionNotices::SessionNotices(
    const SessionMonitor &monitor, ProcessActivator &activator, DesktopNotices &notices,
    const Defaults &defaults, QObject *parent)
    : QObject(parent), m_monitor(monitor), m_activator(activator), m_notices(notices), m_defaults(defaults),
      m_lastNotice(together)
{
    connect(&monitor, &SessionMonitor::sessionsChanged, this, &SessionNotices::follow);
    connect(&monitor, &SessionMonitor::beganToWait, this, [this](const ClaudeSession &session) {
        if (NoticePreferences::in(m_defaults).waiting)
            begin(session, Reason::Waits);
    });
    connect(
        &monitor, &SessionMonitor::runEnded, this,
        [this](const ClaudeSession &session, std::chrono::milliseconds length) {
            const auto wanted = NoticePreferences::in(m_defaults);
            if (wanted.done && length > wanted.doneAfter)
                begin(session, Reason::Done);
        });
    connect(&activator, &ProcessActivator::cameForward, this, [this](pid_t pid) {
        for (const SessionRun &run : m_calls.keys())
            if (run.second == pid)
                drop(run);
    });
    connect(&notices, &DesktopNotices::chosen, this, &SessionNotices::react);
}

void SessionNotices::begin(const ClaudeSession &session, Reason reason)
{
    assertMainThread("Nubble/Sessions/SessionNotices");
    Call &call = m_calls[session.run()];
    call.reason = reason;
    call.turn = ++m_turns;
    call.isPending = true;
    QTimer::singleShot(patience, this, [this, run = session.run(), turn = call.turn] { decide(run, turn); });
}

void SessionNotices::decide(const SessionRun &run, int turn)
{
    const ClaudeSession *session = sessionOf(run);
    if (!session || !isCurrent(run, turn) || !m_calls.value(run).isPending)
        return;
    if (std::ranges::count_if(m_calls, &Call::isPending) > mostApart) {
        showTogether();
        return;
    }
    m_calls[run].isPending = false;
    m_activator.askIfInFront(
        SessionPlace::of(*session, m_monitor.details().of(*session)),
        [self = QPointer(this), run, turn](bool isInFront) {
            if (!self || !self->isCurrent(run, turn))
                return;
            const ClaudeSession *asked = self->sessionOf(run);
            if (isInFront || !asked)
                self->drop(run);
            else
                self->show(*asked);
        });
}

void SessionNotices::show(const ClaudeSession &session)
{
    Call &call = m_calls[session.run()];
    const quint32 before = call.notice;
    if (before == 0 || before == together)
        call.notice = ++m_lastNotice;
    const SessionDetail detail = m_monitor.details().of(session);
    const bool waits = call.reason == Reason::Waits;
    m_notices.post(
        call.notice,
        {.title = shortened(rowTitle(session, detail), longestTitle),
         .text = waits ? labelled(u"Waits for you"_s, questionOf(session, detail))
                       : labelled(u"Done"_s, detail.lastPrompt),
         .action = u"Bring forward"_s,
         .sound = soundFor(call.reason)});
    withdrawIfUnused(before);
}

// With those that this is shown for already.
void SessionNotices::showTogether()
{
    QSet<quint32> before;
    qsizetype waiting = 0;
    qsizetype done = 0;
    for (Call &call : m_calls) {
        if (std::exchange(call.isPending, false))
            before.insert(std::exchange(call.notice, together));
        if (call.notice == together)
            ++(call.reason == Reason::Waits ? waiting : done);
    }
    m_notices.post(
        together,
        {.title = titleForMany(waiting, done),
         .action = u"Show them"_s,
         .sound = soundFor(waiting > 0 ? Reason::Waits : Reason::Done)});
    for (const quint32 notice : std::as_const(before))
        withdrawIfUnused(notice);
}

void SessionNotices::follow()
{
    assertMainThread("Nubble/Sessions/SessionNotices");
    const auto wanted = NoticePreferences::in(m_defaults);
    for (const SessionRun &run : m_calls.keys()) {
        const ClaudeSession *session = sessionOf(run);
        const bool waits = m_calls.value(run).reason == Reason::Waits;
        const bool isWanted = waits ? wanted.waiting : wanted.done;
        if (!session || !isWanted || (waits ? !session->isWaiting() : session->isBusy()))
            drop(run);
    }
}

void SessionNotices::drop(const SessionRun &run)
{
    withdrawIfUnused(m_calls.take(run).notice);
}

void SessionNotices::withdrawIfUnused(quint32 notice)
{
    if (notice != 0 && std::ranges::count(m_calls, notice, &Call::notice) == 0)
        m_notices.withdraw(notice);
}

void SessionNotices::react(quint32 notice, const QByteArray &token)
{
    for (const SessionRun &run : m_calls.keys()) {
        if (m_calls.value(run).notice != notice)
            continue;
        if (notice == together)
            drop(run);
        else if (const ClaudeSession *session = sessionOf(run))
            bringForward(*session, token);
    }
    if (notice == together)
        Q_EMIT listRequested();
}

// If it cannot be, the notice says why; else it goes.
void SessionNotices::bringForward(const ClaudeSession &session, const QByteArray &token)
{
    const SessionPlace place = SessionPlace::of(session, m_monitor.details().of(session));
    const auto tellWhyNot = [self = QPointer(this), run = session.run(),
                             title = place.title](const Outcome &outcome) {
        if (self && !outcome.isDone() && self->m_calls.contains(run))
            self->m_notices.post(
                self->m_calls.value(run).notice,
                {.title = shortened(title, longestTitle), .text = outcome.why()});
    };
    m_activator.activate(place, tellWhyNot, token);
}

const ClaudeSession *SessionNotices::sessionOf(const SessionRun &run) const
{
    const auto session = std::ranges::find(m_monitor.sessions(), run, &ClaudeSession::run);
    return session == m_monitor.sessions().end() ? nullptr : &*session;
}

bool SessionNotices::isCurrent(const SessionRun &run, int turn) const
{
    return m_calls.value(run).turn == turn;
}

// By the names of freedesktop.org.
QString SessionNotices::soundFor(Reason reason) const
{
    if (!NoticePreferences::in(m_defaults).sound)
        return {};
    return reason == Reason::Waits ? u"message-new-instant"_s : u"complete"_s;
}

} // namespace nubble
