#pragma once

#include "Platform/Workspace.h"

namespace nubble {

// Applications that a test puts there; what is activated can be read back.
class FakeWorkspace : public Workspace {
public:
    [[nodiscard]] bool canActivate() const override { return allowed; }
    [[nodiscard]] QList<RunningApplication> runningApplications() const override { return applications; }
    [[nodiscard]] Activation activate(const RunningApplication &application) override
    {
        return activateNearest({application.pid.value_or(0)});
    }
    [[nodiscard]] Activation activateNearest(const QList<pid_t> &chain) override
    {
        ++lookups;
        for (const pid_t pid : chain)
            for (const RunningApplication &each : applications)
                if (allowed && each.pid == pid) {
                    activated.append(pid);
                    return Activation::Requested;
                }
        return allowed ? Activation::NotFound : Activation::Impossible;
    }

    bool allowed = true;
    QList<RunningApplication> applications;
    QList<pid_t> activated;
    int lookups = 0;
};

} // namespace nubble
