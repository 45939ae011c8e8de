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
constexpr CommandLimits lookupLimits{.output = 100, .time = 2s};

} // namespace

ProcessActivator::ProcessActivator(Workspace &workspace, ParentLookup parentOf)
    : m_workspace(workspace), m_parentOf(std::move(parentOf))
{
}

bool ProcessActivator::canActivate() const
{
    return m_workspace.canActivate();
}

Activation ProcessActivator::activate(pid_t pid)
{
    assertMainThread("Nubble/Sessions/ProcessActivator");
    const Activation done = m_workspace.activateNearest(withAncestors(pid));
    return done == Activation::NotFound ? activateClaudeDesktop() : done;
}

QList<pid_t> ProcessActivator::withAncestors(pid_t pid) const
{
    QList<pid_t> chain{pid};
    while (chain.size() <= mostAncestors) {
        const auto parent = m_parentOf(chain.last());
        if (!parent || *parent < 2 || *parent == chain.last())
            break;
        chain.append(*parent);
    }
    return chain;
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
