#include "Widgets/SlimScrollBar.h"

#include <algorithm>

#include "Widgets/Palette.h"
#include "Widgets/Units.h"

namespace nubble {

QSize SlimScrollBar::sizeHint() const
{
    return Units::px(this, QSizeF(9, 40));
}

void SlimScrollBar::paintEvent(QPaintEvent *)
{
    if (maximum() <= minimum())
        return;
    const double range = 1.0 * maximum() - minimum();
    UnitPainter painter(this);
    const QRectF area = painter.area();
    const double length = std::max(24.0, area.height() * pageStep() / (range + pageStep()));
    const double start = (area.height() - length) * (value() - minimum()) / range;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(underMouse() || isSliderDown() ? Palette::textSecondary : Palette::thumb);
    painter.drawRoundedRect(QRectF(area.width() - 5, start, 4, length), 2, 2);
}

} // namespace nubble
