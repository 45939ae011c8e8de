#include "Widgets/SoftShadow.h"

#include <QPainter>

#include "Widgets/Palette.h"

namespace nubble {

void drawSoftShadow(QPainter &painter, const QPainterPath &outline, double reach)
{
    constexpr int steps = 12;
    QPainterPath outside;
    outside.addRect(outline.boundingRect().adjusted(-reach, -reach, reach, reach));
    painter.save();
    painter.setClipPath(outside.subtracted(outline));
    painter.setBrush(Qt::NoBrush);
    // Strokes that grow and add up: darkest at the outline, fading outwards.
    for (int step = 1; step <= steps; ++step) {
        QColor tone = Palette::shadow;
        tone.setAlphaF(0.05F * static_cast<float>(steps + 1 - step) / steps + 0.008F);
        painter.setPen(QPen(tone, 2 * reach * step / steps, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(outline);
    }
    painter.restore();
}

} // namespace nubble
