#pragma once

#include <QColor>
#include <QString>

class QPainter;
class QRectF;

namespace nubble::Symbols {

// Draws the symbol of that name (such as "mic.fill"), fitted into `rect` and tinted. Main thread only.
// Drawings are read from the program's resources at their first use.
void draw(QPainter &painter, const QString &name, const QRectF &rect, const QColor &tint);

} // namespace nubble::Symbols
