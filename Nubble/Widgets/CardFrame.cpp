#include "Widgets/CardFrame.h"

#include <QBitmap>
#include <QPainter>

#include "Placement/PanelShapes.h"
#include "Widgets/Palette.h"

namespace nubble {

namespace {

// From one colour on the card to another one at the tail's tip.
QBrush towardsTip(const QLineF &tail, const QColor &onCard, const QColor &atTip)
{
    if (tail.isNull())
        return onCard;
    QLinearGradient gradient(tail.p1(), tail.p2());
    gradient.setColorAt(0, onCard);
    gradient.setColorAt(1, atTip);
    return gradient;
}

} // namespace

CardFrame CardFrame::rounded(const QRectF &card)
{
    return {.outline = cardOutline(NotchEdge::Top, card, 0, 0)};
}

QPixmap CardFrame::drawn(const QSize &size, qreal scale, bool translucent, double unit) const
{
    QPixmap frame(size * scale);
    frame.setDevicePixelRatio(scale);
    frame.fill(Qt::transparent);
    QPainter painter(&frame);
    painter.scale(unit, unit);
    QColor onCard = Palette::card;
    if (!translucent || isOpaque)
        onCard.setAlpha(255);
    const QBrush fill = towardsTip(tail, onCard, Palette::body);
    if (translucent) {
        painter.setRenderHint(QPainter::Antialiasing);
        drawSoftShadow(painter, outline, shadow);
    } else {
        // The window is cut along the outline: fill beyond it, so that no pixel on the way is left unpainted.
        painter.fillRect(QRectF({}, QSizeF(size) / unit), fill);
    }
    painter.setCompositionMode(QPainter::CompositionMode_Source); // no shadow below it
    painter.fillPath(outline, fill);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);

    // The line runs inside the outline: half of a stroke of twice its width.
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(outline);
    painter.setPen(QPen(towardsTip(tail, Palette::cardLine, Qt::transparent), 2));
    painter.drawPath(outline);
    return frame;
}

QRegion CardFrame::region(const QSize &size, double unit) const
{
    QBitmap within(size);
    within.clear();
    QPainter painter(&within);
    painter.scale(unit, unit);
    painter.fillPath(outline, Qt::color1);
    return {within};
}

} // namespace nubble
