#include "Thread/LineSpan.h"

#include <QGlyphRun>
#include <QTextLine>

#include <algorithm>

namespace nubble {

namespace {

bool isRightToLeft(QChar each)
{
    return each.direction() == QChar::DirR || each.direction() == QChar::DirAL;
}

} // namespace

QList<LineSpan> spansOf(const QTextLine &line, const QString &text, const TextRange &range)
{
    const QStringView shown = QStringView(text).mid(line.textStart(), line.textLength());
    QList<LineSpan> spans;
    // A cursor's place is that of two characters where the ways of writing meet; the glyphs' is not.
    if (std::any_of(shown.begin(), shown.end(), isRightToLeft))
        for (const QGlyphRun &run : line.glyphRuns(range.from, range.to - range.from)) {
            const QRectF box = run.boundingRect();
            spans.append({box.left(), box.right()});
        }
    if (spans.isEmpty()) {
        const auto [left, right] = std::minmax({line.cursorToX(range.from), line.cursorToX(range.to)});
        return {{left, right}};
    }
    std::sort(
        spans.begin(), spans.end(), [](const LineSpan &a, const LineSpan &b) { return a.left < b.left; });
    QList<LineSpan> joined{spans.first()};
    for (const LineSpan &each : std::as_const(spans)) {
        if (each.left > joined.last().right + 1)
            joined.append(each);
        joined.last().right = std::max(joined.last().right, each.right);
    }
    return joined;
}

} // namespace nubble
