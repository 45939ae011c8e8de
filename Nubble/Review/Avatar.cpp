#include "Review/Avatar.h"

#include <QPainter>

#include "Widgets/Palette.h"
#include "Widgets/Typography.h"

namespace nubble {

void Avatar::draw(QPainter &painter, const QPointF &corner, const QString &initial)
{
    const QRectF disc(corner, QSizeF(side, side));
    QColor fill = Palette::quenwick;
    fill.setAlphaF(0.3F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawEllipse(disc);
    painter.setFont(Typography::rowTitle());
    painter.setPen(Palette::textPrimary);
    painter.drawText(disc, Qt::AlignCenter, initial);
}

} // namespace nubble
