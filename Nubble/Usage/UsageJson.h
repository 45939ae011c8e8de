#pragma once

#include <QByteArray>

#include "Usage/PlanWindow.h"

namespace nubble {

// The body of a usage answer, in either of the shapes the service has given it. Absent when it is no such
// body or tells of neither window. Pure.
[[nodiscard]] std::optional<PlanWindows> parseUsageJson(const QByteArray &json);

} // namespace nubble
