#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <optional>
#include <sys/types.h>

namespace nubble {

class ProcessTable;
class Workspace;
enum class Activation;

// Brings the application forward in which a process runs: the nearest of its ancestors that is one, else
// Claude's own desktop application. Main thread only; waits for one short command per ancestor.
class ProcessActivator {
public:
    using ParentLookup = std::function<std::optional<pid_t>(pid_t)>;

    ProcessActivator(Workspace &workspace, ParentLookup parentOf);

    [[nodiscard]] bool canActivate() const; // whether this desktop brings anything forward
    Activation activate(pid_t pid);

    // Asks the program `ps`, and the kernel's table where that is not installed.
    [[nodiscard]] static ParentLookup askingPs(
        const ProcessTable &processes, const QString &ps = QStringLiteral("/bin/ps"));

private:
    [[nodiscard]] QList<pid_t> withAncestors(pid_t pid) const;
    [[nodiscard]] Activation activateClaudeDesktop();

    Workspace &m_workspace;
    ParentLookup m_parentOf;
};

} // namespace nubble
