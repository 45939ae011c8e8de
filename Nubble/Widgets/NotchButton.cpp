#include "Widgets/NotchButton.h"

#include <chrono>
#include <cmath>
#include <numbers>

#include "Placement/Layout.h"
#include "Widgets/Palette.h"
#include "Widgets/Symbols.h"
#include "Widgets/Units.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto pulseTime = 2000ms;
constexpr auto pulseStep = 80ms; // it is all day in somebody's sight, and costs little so

} // namespace

NotchButton::NotchButton(const QString &symbol, const QString &helpText, QWidget *parent)
    : QAbstractButton(parent), m_symbol(symbol), m_tint(Palette::textPrimary), m_side(Layout::actionButton),
      m_hover(this)
{
    setHelpText(helpText);
    setFocusPolicy(Qt::TabFocus);
    m_pulse.callOnTimeout(this, qOverload<>(&QWidget::update));
}

void NotchButton::setSymbol(const QString &symbol)
{
    if (m_symbol == symbol)
        return;
    m_symbol = symbol;
    update();
}

void NotchButton::setHelpText(const QString &helpText)
{
    setToolTip(helpText);
    setAccessibleName(helpText);
}

void NotchButton::setTint(const QColor &tint)
{
    if (m_tint == tint)
        return;
    m_tint = tint;
    update();
}

void NotchButton::setSide(double side)
{
    m_side = side;
    updateGeometry();
    update();
}

void NotchButton::place(const QRect &area, const QPointF &center)
{
    setGeometry(area);
    m_center = (center - area.topLeft()) / Units::of(this);
    update();
}

void NotchButton::setRotation(double degrees)
{
    if (m_rotation == degrees)
        return;
    m_rotation = degrees;
    update();
}

void NotchButton::setPulsing(bool pulsing)
{
    if (m_pulsing == pulsing)
        return;
    m_pulsing = pulsing;
    followPulse();
}

void NotchButton::followPulse()
{
    const bool runs = m_pulsing && isVisible();
    if (runs == m_pulse.isActive())
        return;
    if (runs) {
        m_sincePulse.start();
        m_pulse.start(pulseStep);
    } else {
        m_pulse.stop();
    }
    update();
}

void NotchButton::showEvent(QShowEvent *)
{
    followPulse();
}

void NotchButton::hideEvent(QHideEvent *)
{
    followPulse();
}

float NotchButton::pulse() const
{
    if (!m_pulse.isActive())
        return 1;
    constexpr double faintest = 0.4;
    const double turns = static_cast<double>(m_sincePulse.elapsed()) / static_cast<double>(pulseTime / 1ms);
    const double wave = (1 + std::cos(2 * std::numbers::pi * turns)) / 2;
    return static_cast<float>(faintest + (1 - faintest) * wave);
}

QSize NotchButton::sizeHint() const
{
    return Units::px(this, QSizeF(std::ceil(m_side), std::ceil(m_side)));
}

void NotchButton::paintEvent(QPaintEvent *)
{
    UnitPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF circle(0, 0, m_side, m_side);
    circle.moveCenter(m_center.value_or(painter.area().center()));

    painter.setPen(hasFocus() ? QPen(Palette::focus, 1.5) : QPen(Qt::NoPen));
    painter.setBrush(m_hover.lifted(Palette::control, isDown()));
    painter.drawEllipse(circle.adjusted(0.75, 0.75, -0.75, -0.75));

    QColor tint = m_tint;
    tint.setAlphaF(tint.alphaF() * pulse() * (isEnabled() ? 1 : 0.4F));
    QRectF symbol(0, 0, m_side * 0.54, m_side * 0.54);
    symbol.moveCenter(QPointF());
    painter.translate(circle.center());
    painter.rotate(m_rotation);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_rotation != 0);
    Symbols::draw(painter, m_symbol, symbol, tint);
}

} // namespace nubble
