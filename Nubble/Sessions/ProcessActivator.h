#pragma once

#include <functional>
#include <optional>
#include <sys/types.h>

namespace nubble {

class Workspace;

// Brings the application forward in which a process runs: the nearest of its ancestors that is one, else
// Claude's own desktop application. Main thread only; waits for one short command per ancestor. When nothing
// fits, nothing happens.
class ProcessActivator {
public:
    using ParentLookup = std::function<std::optional<pid_t>(pid_t)>;

    explicit ProcessActivator(Workspace &workspace, ParentLookup parentOf = &ProcessActivator::parentPid);

    void activate(pid_t pid);
    [[nodiscard]] std::optional<pid_t> ownerApplicationPid(pid_t pid) const; // `pid` itself, or an ancestor
    [[nodiscard]] static std::optional<pid_t> parentPid(pid_t pid);

private:
    [[nodiscard]] std::optional<pid_t> claudeDesktop() const;

    Workspace &m_workspace;
    ParentLookup m_parentOf;
};

} // namespace nubble
