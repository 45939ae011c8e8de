#pragma once

#include <QString>

namespace nubble {

// A text that others have written, for a place that has one line: a line's end or a change of direction would
// spill over into what stands beside it, and so would a mark of direction at an end. Pure.
[[nodiscard]] QString oneLine(QString text);

// The same with its spaces as they are, and its marks.
[[nodiscard]] QString withoutControls(QString text);

// Its beginning, of at most so many units, and never half a character. One that is cut ends with "…".
[[nodiscard]] QString shortened(const QString &text, qsizetype most);

// Whether it overrides or embeds the direction of others, or isolates them.
[[nodiscard]] bool isDirectionChange(QChar each);

} // namespace nubble
