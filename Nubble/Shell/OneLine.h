#pragma once

#include <QString>

namespace nubble {

// A text that others have written, for a place that has one line: a line's end or a change of direction would
// spill over into what stands beside it. Pure.
[[nodiscard]] QString oneLine(QString text);

} // namespace nubble
