#pragma once

#include <QFont>
#include <QString>

class QPainter;
class QRectF;

namespace nubble {

// The program's fonts: Inter where it is installed, else the system's. Sizes are device-independent pixels at
// any screen scale and font resolution. Needs a QGuiApplication; main thread only.
namespace Typography {

[[nodiscard]] QFont percent(); // the number below the status ring
[[nodiscard]] QFont cardTitle();
[[nodiscard]] QFont rowTitle();
[[nodiscard]] QFont cardBody();
[[nodiscard]] QFont caption();
[[nodiscard]] QFont dayHeader();
[[nodiscard]] QFont query();       // what is searched for
[[nodiscard]] QFont resultTitle(); // of what was found
[[nodiscard]] QFont menu();
[[nodiscard]] QFont reading();          // texts of more than a few lines
[[nodiscard]] QFont heading(int level); // within those; 1 is the largest
[[nodiscard]] QFont code();

// The lightest weight of that family that is no lighter, so that a title never looks like the text below it.
[[nodiscard]] QFont::Weight presentWeight(const QString &family, QFont::Weight wanted);

// The height of one line of `percent()`, whole pixels.
[[nodiscard]] double percentLineHeight();

// Where a line that does not fit is cut: what was written at the end of its own direction of writing, a path
// or another identifier in the middle.
enum class Elided { End, Middle };

// A line that may be cut off, which no space is left before.
[[nodiscard]] QString elidedLine(const QFont &font, const QString &text, double width);

// Draws one line at the left.
void drawElided(QPainter &painter, const QRectF &rect, const QString &text, Elided elided = Elided::End);

// Draws one line whose digits are all of the same width, so that changing numbers do not jitter.
void drawTabular(QPainter &painter, const QRectF &rect, Qt::Alignment alignment, const QString &text);

// The width of that line in the painter's font.
[[nodiscard]] double tabularWidth(const QPainter &painter, const QString &text);

} // namespace Typography

} // namespace nubble
