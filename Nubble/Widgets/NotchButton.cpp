#include "Widgets/NotchButton.h"

#include <QPainter>

#include "Placement/Layout.h"
#include "Widgets/Palette.h"
#include "Widgets/Symbols.h"

namespace nubble {

NotchButton::NotchButton(const QString &symbol, const QString &helpText, QWidget *parent)
    : QAbstractButton(parent), m_symbol(symbol), m_tint(Palette::textPrimary), m_side(Layout::actionButton),
      m_hover(this)
{
    setHelpText(helpText);
    setFocusPolicy(Qt::TabFocus);
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

void NotchButton::setRotation(double degrees)
{
    if (m_rotation == degrees)
        return;
    m_rotation = degrees;
    update();
}

QSize NotchButton::sizeHint() const
{
    return {qCeil(m_side), qCeil(m_side)};
}

void NotchButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF circle(0, 0, m_side, m_side);
    circle.moveCenter(QRectF(rect()).center());

    painter.setPen(hasFocus() ? QPen(Palette::focus, 1.5) : QPen(Qt::NoPen));
    painter.setBrush(m_hover.lifted(Palette::control, isDown()));
    painter.drawEllipse(circle.adjusted(0.75, 0.75, -0.75, -0.75));

    QColor tint = m_tint;
    if (!isEnabled())
        tint.setAlphaF(tint.alphaF() * 0.4F);
    QRectF symbol(0, 0, m_side * 0.54, m_side * 0.54);
    symbol.moveCenter(QPointF());
    painter.translate(circle.center());
    painter.rotate(m_rotation);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_rotation != 0);
    Symbols::draw(painter, m_symbol, symbol, tint);
}

} // namespace nubble
