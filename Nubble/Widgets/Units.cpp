#include "Widgets/Units.h"

#include <QVariant>
#include <QWidget>

namespace nubble {

namespace {

constexpr auto property = "unit";

} // namespace

void Units::set(QWidget &window, double unit)
{
    window.setProperty(property, unit);
}

double Units::of(const QWidget *widget)
{
    for (; widget; widget = widget->parentWidget()) // a tool tip's is another window
        if (const QVariant unit = widget->property(property); unit.isValid())
            return unit.toDouble();
    return 1;
}

int Units::px(const QWidget *widget, double length)
{
    return qRound(length * of(widget));
}

QSize Units::px(const QWidget *widget, const QSizeF &size)
{
    return (size * of(widget)).toSize();
}

QMargins Units::px(const QWidget *widget, const QMargins &margins)
{
    return margins * of(widget);
}

QFont Units::px(const QWidget *widget, QFont font)
{
    font.setPointSizeF(font.pointSizeF() * of(widget));
    return font;
}

UnitPainter::UnitPainter(QWidget *widget) : QPainter(widget)
{
    const double unit = Units::of(widget);
    m_area = {QPointF(), QSizeF(widget->size()) / unit};
    scale(unit, unit);
}

} // namespace nubble
