#pragma once

#include <QString>

#include "Usage/PlanWindow.h"
#include "Usage/Reading.h"

namespace nubble {

// What the plan's usage looks like in words, and which colour it takes. Pure.

enum class UsageLevel { Ample, Watch, Critical };

// Cut to a whole number of 0 to 100. Everything that shows a fraction, be it a text, a colour or a length,
// goes by this, so that none of them says more than another.
[[nodiscard]] int percentOf(double fraction);
[[nodiscard]] QString percentText(int percent); // "42% Used"
[[nodiscard]] UsageLevel levelOf(int percent);

// When a window starts anew, seen from `now`: a span within a day, else the local weekday and time. Empty
// without a date.
[[nodiscard]] QString resetText(const std::optional<QDateTime> &resetsAt, const QDateTime &now);

// `installCommand` is for zstd, where one is known.
[[nodiscard]] QString problemText(
    ReadProblem problem, const std::optional<QString> &installCommand = std::nullopt);
[[nodiscard]] QString staleText(std::chrono::milliseconds age);

} // namespace nubble
