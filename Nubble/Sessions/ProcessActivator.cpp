#include "Sessions/ProcessActivator.h"

#include <QCoreApplication>

#include <algorithm>

#include "Platform/MainThread.h"
#include "Platform/ProcessTable.h"
#include "Platform/Workspace.h"
#include "Shell/Command.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr int mostAncestors = 24;
constexpr CommandLimits lookupLimits{.output = 100, .time = 1s};

QList<pid_t> withAncestors(pid_t pid, const ProcessActivator::ParentLookup &parentOf)
{
    QList<pid_t> chain{pid};
    while (chain.size() <= mostAncestors) {
        const auto parent = parentOf(chain.last());
        if (!parent || *parent < 2 || *parent == chain.last())
            break;
        chain.append(*parent);
    }
    return chain;
}

} // namespace

ProcessActivator::ProcessActivator(Workspace &workspace, ParentLookup parentOf, QObject *parent)
    : QObject(parent), m_workspace(workspace), m_parentOf(std::move(parentOf))
{
}

bool ProcessActivator::canActivate() const
{
    return m_workspace.canActivate();
}

void ProcessActivator::activate(const SessionPlace &place, Told told, const QByteArray &)
{
    assertMainThread("Nubble/Sessions/ProcessActivator");
    if (m_wishes.hasLatestWaiting())
        std::exchange(*m_told, {})(Outcome::failed(u"Another session was picked"_s));
    m_told = std::make_shared<Told>([this, pid = place.pid, told = std::move(told)](const Outcome &outcome) {
        if (outcome.isDone())
            Q_EMIT cameForward(pid);
        told(outcome);
    });
    m_wishes.addLatest(
        [parentOf = m_parentOf, pid = place.pid](const std::stop_token &) {
            return withAncestors(pid, parentOf);
        },
        [this, waiting = m_told](const QList<pid_t> &chain) {
            const bool isDone = bringForward(chain) == Activation::Requested;
            if (const Told answer = std::exchange(*waiting, {})) // else it began while it was replaced
                answer(isDone ? Outcome::done() : Outcome::failed(u"No window of it was found"_s));
        });
}

void ProcessActivator::askIfInFront(const SessionPlace &place, std::function<void(bool)> told)
{
    assertMainThread("Nubble/Sessions/ProcessActivator");
    m_questions.add(
        [parentOf = m_parentOf, pid = place.pid](const std::stop_token &) {
            return withAncestors(pid, parentOf);
        },
        [this, told = std::move(told)](const QList<pid_t> &chain) {
            told(m_workspace.isInFront({.chain = chain}));
        });
}

void ProcessActivator::waitForDone()
{
    m_wishes.waitForDone();
    m_questions.waitForDone();
}

Activation ProcessActivator::bringForward(const QList<pid_t> &chain)
{
    const Activation done = m_workspace.activateNearest({.chain = chain});
    return done == Activation::NotFound ? activateClaudeDesktop() : done;
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

ProcessActivator::ParentLookup ProcessActivator::askingPs(const ProcessTable &processes, const QString &ps)
{
    return [&processes, ps](pid_t pid) -> std::optional<pid_t> {
        const Command command{ps, {u"-o"_s, u"ppid="_s, u"-p"_s, QString::number(pid)}};
        const CommandEnd end = runCommand(command, {}, lookupLimits);
        if (end.kind == CommandEnd::Kind::NotStarted) {
            const auto process = processes.find(pid);
            return process ? process->parent : std::nullopt;
        }
        bool isNumber = false;
        const pid_t parent = end.output.trimmed().toInt(&isNumber);
        return isNumber ? std::optional(parent) : std::nullopt;
    };
}

} // namespace nubble
