#include "Widgets/SlimScrollBar.h"

#include <QPainter>

#include <algorithm>

#include "Widgets/Palette.h"

namespace nubble {

QSize SlimScrollBar::sizeHint() const
{
    return {9, 40};
}

void SlimScrollBar::paintEvent(QPaintEvent *)
{
    if (maximum() <= minimum())
        return;
    const double range = 1.0 * maximum() - minimum();
    const double length = std::max(24.0, height() * pageStep() / (range + pageStep()));
    const double start = (height() - length) * (value() - minimum()) / range;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(underMouse() || isSliderDown() ? Palette::textSecondary : Palette::thumb);
    painter.drawRoundedRect(QRectF(width() - 5, start, 4, length), 2, 2);
}

} // namespace nubble
