#pragma once

#include <QDateTime>

#include <optional>

namespace nubble {

// One of the plan's usage windows: how much of it is used, and when it starts anew.
struct PlanWindow {
    double fraction = 0; // 0 nothing, 1 all; finite, but beyond both where the service says so
    std::optional<QDateTime> resetsAt;

    bool operator==(const PlanWindow &) const = default;
};

// Both of them, as far as they are known.
struct PlanWindows {
    std::optional<PlanWindow> session; // five hours
    std::optional<PlanWindow> weekly;  // seven days, all models

    bool operator==(const PlanWindows &) const = default;
};

} // namespace nubble
