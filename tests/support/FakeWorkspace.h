#pragma once

#include <algorithm>

#include "Platform/Workspace.h"

namespace nubble {

// Applications that a test puts there; what is activated can be read back.
class FakeWorkspace : public Workspace {
public:
    [[nodiscard]] QList<RunningApplication> runningApplications() const override { return applications; }
    [[nodiscard]] bool isRunningApplication(pid_t pid) const override
    {
        return std::any_of(
            applications.begin(), applications.end(), [pid](const auto &each) { return each.pid == pid; });
    }
    void activate(pid_t pid) override { activated.append(pid); }

    QList<RunningApplication> applications;
    QList<pid_t> activated;
};

} // namespace nubble
