#include "Widgets/CardFrame.h"

#include <QPainter>

#include "Placement/PanelShapes.h"
#include "Widgets/Palette.h"
#include "Widgets/SoftShadow.h"

namespace nubble {

namespace {

constexpr double shadowReach = CardFrame::margin - 1;

} // namespace

CardFrame CardFrame::rounded(const QRectF &card)
{
    const QPainterPath outline = cardOutline(NotchEdge::Top, card, 0, 0);
    return {outline, outline};
}

QPixmap CardFrame::drawn(const QSize &size, qreal scale, bool translucent) const
{
    QPixmap frame(size * scale);
    frame.setDevicePixelRatio(scale);
    frame.fill(Qt::transparent);
    QPainter painter(&frame);
    QColor fill = Palette::card;
    if (translucent) {
        painter.setRenderHint(QPainter::Antialiasing);
        drawSoftShadow(painter, shadowOutline, shadowReach);
    } else {
        // The window is cut along the outline: fill beyond it, so that no pixel on the way is left unpainted.
        fill.setAlpha(255);
        painter.fillRect(QRect({}, size), fill);
    }
    painter.setCompositionMode(QPainter::CompositionMode_Source); // no shadow below the tail
    painter.fillPath(outline, fill);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);

    // The line runs inside the outline: half of a stroke of twice its width.
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(outline);
    painter.setPen(QPen(Palette::cardLine, 2));
    painter.drawPath(outline);
    return frame;
}

} // namespace nubble
