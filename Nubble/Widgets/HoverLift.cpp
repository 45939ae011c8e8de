#include "Widgets/HoverLift.h"

#include <QEvent>
#include <QWidget>

#include "Widgets/Palette.h"

namespace nubble {

HoverLift::HoverLift(QWidget *control)
{
    setStartValue(0.0);
    setEndValue(1.0);
    setDuration(120);
    control->installEventFilter(this);
    connect(this, &QVariantAnimation::valueChanged, control, qOverload<>(&QWidget::update));
}

QColor HoverLift::lifted(const QColor &fill, bool pressed) const
{
    const auto light = static_cast<float>(pressed ? 1.6 : currentValue().toDouble());
    QColor lit = Palette::hover;
    lit.setAlphaF(fill.alphaF() + light * Palette::hover.alphaF());
    return lit;
}

bool HoverLift::eventFilter(QObject *watched, QEvent *event)
{
    const bool enters = event->type() == QEvent::Enter && static_cast<const QWidget *>(watched)->isEnabled();
    if (enters || event->type() == QEvent::Leave) {
        setDirection(enters ? Forward : Backward);
        start();
    }
    return QVariantAnimation::eventFilter(watched, event);
}

} // namespace nubble
