#include "Sessions/ProcessActivator.h"

#include <QCoreApplication>

#include <algorithm>

#include "Platform/MainThread.h"
#include "Platform/Workspace.h"
#include "Sessions/SessionTexts.h"
#include "Terminals/TerminalPane.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

WantedWindow windowOf(const WindowWay &way, const SessionPlace &place, const QByteArray &token = {})
{
    return {.chain = way.chain, .window = way.window, .title = place.title, .token = token};
}

} // namespace

SessionPlace SessionPlace::of(const ClaudeSession &session, const SessionDetail &detail)
{
    return {session.pid, rowTitle(session, detail)};
}

ProcessActivator::ProcessActivator(Workspace &workspace, TerminalLookups lookups, QObject *parent)
    : QObject(parent), m_workspace(workspace), m_lookups(std::move(lookups))
{
}

bool ProcessActivator::canActivate() const
{
    return m_workspace.canActivate();
}

void ProcessActivator::activate(const SessionPlace &place, Told told, const QByteArray &token)
{
    assertMainThread("Nubble/Sessions/ProcessActivator");
    const Told tellReplaced = m_wishes.hasLatestWaiting() ? std::exchange(*m_told, {}) : Told();
    m_told = std::make_shared<Told>(std::move(told));
    m_wishes.addLatest(
        [finder = finder(), pid = place.pid](const std::stop_token &) {
            WindowWay way = finder.find(pid);
            for (const auto &pane : way.panes)
                pane->select();
            return way;
        },
        [this, place, token, waiting = m_told](const WindowWay &way) {
            const Outcome outcome = bringForward(way, place, token);
            m_attachCommand = way.attachCommand;
            if (outcome.isDone())
                Q_EMIT cameForward(place.pid);
            if (const Told tell = std::exchange(*waiting, {})) // else it began while it was replaced
                tell(outcome);
            m_attachCommand.clear();
        });
    if (tellReplaced)
        tellReplaced(replaced());
}

Outcome ProcessActivator::replaced()
{
    return Outcome::failed(u"Another session was picked"_s);
}

void ProcessActivator::askIfInFront(const SessionPlace &place, std::function<void(bool)> told)
{
    assertMainThread("Nubble/Sessions/ProcessActivator");
    struct Answer {
        WindowWay way;
        bool isSelected;
    };
    m_questions.add(
        [finder = finder(), pid = place.pid](const std::stop_token &) -> Answer {
            const WindowWay way = finder.find(pid);
            return {way, std::ranges::all_of(way.panes, [](const auto &pane) { return pane->isSelected(); })};
        },
        [this, place, told = std::move(told)](const Answer &answer) {
            told(answer.isSelected && m_workspace.isInFront(windowOf(answer.way, place)));
        });
}

void ProcessActivator::waitForDone()
{
    m_wishes.waitForDone();
    m_questions.waitForDone();
}

WindowWayFinder ProcessActivator::finder() const
{
    QSet<pid_t> owners;
    for (const RunningApplication &each : m_workspace.runningApplications())
        owners.insert(each.pid.value_or(0));
    return {m_lookups, owners};
}

Outcome ProcessActivator::bringForward(
    const WindowWay &way, const SessionPlace &place, const QByteArray &token)
{
    Activation done = m_workspace.activateNearest(windowOf(way, place, token));
    if (done == Activation::NotFound && way.attachCommand.isEmpty())
        done = activateClaudeDesktop();
    if (done == Activation::Requested)
        return Outcome::done();
    if (done == Activation::Impossible)
        return Outcome::failed(u"This desktop raises no windows"_s);
    return Outcome::failed(way.obstacle.isEmpty() ? u"Its window has just gone"_s : way.obstacle);
}

Activation ProcessActivator::activateClaudeDesktop()
{
    const auto applications = m_workspace.runningApplications();
    const auto found =
        std::find_if(applications.begin(), applications.end(), [](const RunningApplication &each) {
            return each.pid != QCoreApplication::applicationPid()
                && (each.identifier.contains("claude"_L1, Qt::CaseInsensitive) || each.name == "Claude"_L1);
        });
    return found == applications.end() ? Activation::NotFound : m_workspace.activate(*found);
}

} // namespace nubble
