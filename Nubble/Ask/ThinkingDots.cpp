#include "Ask/ThinkingDots.h"

#include <QPainter>

#include <cmath>
#include <numbers>

#include "Widgets/Palette.h"

namespace nubble {

namespace {

constexpr int count = 3;
constexpr double diameter = 6;
constexpr double distance = 11;  // from one to the next
constexpr double delay = 0.16;   // of a breath, from one to the next
constexpr double faintest = 0.3; // of the brightest
constexpr int breath = 1200;     // milliseconds

} // namespace

ThinkingDots::ThinkingDots(QWidget *parent) : QWidget(parent)
{
    setAccessibleName(QStringLiteral("Claude is thinking"));
    m_breath.setStartValue(0.0);
    m_breath.setEndValue(1.0);
    m_breath.setDuration(breath);
    m_breath.setLoopCount(-1);
    connect(&m_breath, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
}

void ThinkingDots::setMotionReduced(bool reduced)
{
    m_motionReduced = reduced;
    follow();
}

QSize ThinkingDots::sizeHint() const
{
    return {static_cast<int>(diameter + distance * (count - 1)), 18};
}

void ThinkingDots::paintEvent(QPaintEvent *)
{
    const double phase = m_breath.currentValue().toDouble();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < count; ++i) {
        const double wave =
            m_motionReduced ? 0.5 : (1 + std::cos(2 * std::numbers::pi * (phase - delay * i))) / 2;
        QColor colour = Palette::textPrimary;
        colour.setAlphaF(colour.alphaF() * static_cast<float>(faintest + (1 - faintest) * wave));
        painter.setBrush(colour);
        painter.drawEllipse(QRectF(i * distance, (height() - diameter) / 2, diameter, diameter));
    }
}

void ThinkingDots::showEvent(QShowEvent *)
{
    follow();
}

void ThinkingDots::hideEvent(QHideEvent *)
{
    follow();
}

void ThinkingDots::follow()
{
    if (isVisible() && !m_motionReduced)
        m_breath.start();
    else
        m_breath.stop();
    update();
}

} // namespace nubble
