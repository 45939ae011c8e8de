#pragma once

#include <QString>

#include "Usage/PlanWindow.h"
#include "Usage/Reading.h"

namespace nubble {

// What the plan's usage looks like in words, and which colour it takes. Pure.

enum class UsageLevel { Ample, Watch, Critical };

[[nodiscard]] int percentOf(double fraction);       // whole, 0 to 100
[[nodiscard]] QString percentText(double fraction); // "42% Used"
[[nodiscard]] UsageLevel levelOf(double fraction);

// When a window starts anew, seen from `now`: a span within a day, else the local weekday and time. Empty
// without a date.
[[nodiscard]] QString resetText(const std::optional<QDateTime> &resetsAt, const QDateTime &now);

[[nodiscard]] QString problemText(ReadProblem problem);
[[nodiscard]] QString staleText(std::chrono::milliseconds age);

} // namespace nubble
