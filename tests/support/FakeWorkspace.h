#pragma once

#include <QMap>

#include "Platform/Workspace.h"

namespace nubble {

// Applications that a test puts there; what is activated can be read back.
class FakeWorkspace : public Workspace {
public:
    [[nodiscard]] bool canActivate() const override { return allowed; }
    [[nodiscard]] QList<RunningApplication> runningApplications() const override { return applications; }
    [[nodiscard]] Activation activate(const RunningApplication &application) override
    {
        return activateNearest({.chain = {application.pid.value_or(0)}});
    }
    [[nodiscard]] Activation activateNearest(const WantedWindow &window) override
    {
        ++lookups;
        wanted = window;
        for (const pid_t pid : window.chain)
            for (const RunningApplication &each : applications)
                if (allowed && each.pid == pid) {
                    activated.append(pid);
                    return Activation::Requested;
                }
        return allowed ? Activation::NotFound : Activation::Impossible;
    }
    [[nodiscard]] bool isInFront(const WantedWindow &window) const override
    {
        return front && front->pid && window.chain.contains(*front->pid);
    }
    [[nodiscard]] std::optional<RunningApplication> frontApplication() const override { return front; }
    [[nodiscard]] std::optional<QString> windowTitle(pid_t pid) const override
    {
        const auto title = titles.constFind(pid);
        return title == titles.constEnd() ? std::nullopt : std::optional(*title);
    }

    bool allowed = true;
    QList<RunningApplication> applications;
    std::optional<RunningApplication> front;
    QMap<pid_t, QString> titles;
    QList<pid_t> activated;
    WantedWindow wanted; // by the last activation
    int lookups = 0;
};

} // namespace nubble
