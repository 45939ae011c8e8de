#pragma once

#include <QList>
#include <QString>

#include "Thread/TextMatcher.h"

class QTextLine;

namespace nubble {

// A stretch of a line, in its layout's coordinates.
struct LineSpan {
    double left = 0;
    double right = 0;
};

// Where characters of a line stand, which lies within `text`, its layout's: from left to right, and apart
// where one way of writing is within the other.
[[nodiscard]] QList<LineSpan> spansOf(const QTextLine &line, const QString &text, const TextRange &range);

} // namespace nubble
