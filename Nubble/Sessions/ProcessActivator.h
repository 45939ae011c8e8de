#pragma once

#include <QList>

#include <functional>
#include <optional>
#include <sys/types.h>

namespace nubble {

class Workspace;
enum class Activation;

// Brings the application forward in which a process runs: the nearest of its ancestors that is one, else
// Claude's own desktop application. Main thread only; waits for one short command per ancestor.
class ProcessActivator {
public:
    using ParentLookup = std::function<std::optional<pid_t>(pid_t)>;

    explicit ProcessActivator(Workspace &workspace, ParentLookup parentOf = &ProcessActivator::parentPid);

    [[nodiscard]] bool canActivate() const; // whether this desktop brings anything forward
    Activation activate(pid_t pid);
    [[nodiscard]] static std::optional<pid_t> parentPid(pid_t pid);

private:
    [[nodiscard]] QList<pid_t> withAncestors(pid_t pid) const;
    [[nodiscard]] Activation activateClaudeDesktop();

    Workspace &m_workspace;
    ParentLookup m_parentOf;
};

} // namespace nubble
