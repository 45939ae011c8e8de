#include "Widgets/PillButton.h"

#include <cmath>

#include "Widgets/Palette.h"
#include "Widgets/Symbols.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

namespace nubble {

namespace {

constexpr double symbolSide = 12;
constexpr double symbolGap = 6;
constexpr float accentShare = 0.22F; // of the fill
constexpr float disabledShare = 0.4F;

QColor thinned(QColor colour, float share)
{
    colour.setAlphaF(colour.alphaF() * share);
    return colour;
}

} // namespace

PillButton::PillButton(const QString &title, QWidget *parent) : QAbstractButton(parent), m_hover(this)
{
    setFont(Typography::rowTitle());
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setTitle(title);
}

void PillButton::setSymbol(const QString &symbol)
{
    m_symbol = symbol;
    updateGeometry();
    update();
}

void PillButton::setTitle(const QString &title)
{
    setText(title);
    setAccessibleName(title);
    updateGeometry();
}

void PillButton::setHelpText(const QString &helpText)
{
    setToolTip(helpText);
}

void PillButton::setAccent(const QColor &accent)
{
    m_accent = accent;
    update();
}

void PillButton::setMeasures(int height, double padding)
{
    m_height = height;
    m_padding = padding;
    updateGeometry();
}

double PillButton::symbolWidth() const
{
    return m_symbol.isEmpty() ? 0 : text().isEmpty() ? symbolSide : symbolSide + symbolGap;
}

int PillButton::widthFor(const QString &title) const
{
    return static_cast<int>(
        std::ceil(QFontMetricsF(font()).horizontalAdvance(title) + symbolWidth() + 2 * m_padding));
}

QSize PillButton::sizeHint() const
{
    return Units::px(this, QSizeF(widthFor(text()), m_height));
}

QSize PillButton::minimumSizeHint() const
{
    return Units::px(this, QSizeF(m_height, m_height));
}

void PillButton::paintEvent(QPaintEvent *)
{
    UnitPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = painter.area();
    const QRectF pill = area.adjusted(0.75, 0.75, -0.75, -0.75);
    const double radius = pill.height() / 2;
    const float share = isEnabled() ? 1 : disabledShare;
    if (m_accent.isValid()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(thinned(m_accent, accentShare * share));
        painter.drawRoundedRect(pill, radius, radius);
    }
    painter.setPen(hasFocus() ? QPen(Palette::focus, 1.5) : QPen(Palette::cardLine, 1));
    painter.setBrush(m_hover.lifted(m_accent.isValid() ? Qt::transparent : Palette::control, isDown()));
    painter.drawRoundedRect(pill, radius, radius);

    const double most = area.width() - 2 * m_padding - symbolWidth();
    painter.setFont(font());
    const QFontMetricsF metrics(font());
    const QString shown = metrics.elidedText(text(), Qt::ElideRight, std::ceil(most));
    const double whole = symbolWidth() + metrics.horizontalAdvance(shown);
    QRectF content((area.width() - whole) / 2, 0, whole, area.height());
    if (!m_symbol.isEmpty()) {
        const QRectF symbol(content.left(), (area.height() - symbolSide) / 2, symbolSide, symbolSide);
        const QColor tint = m_accent.isValid() ? m_accent : Palette::textPrimary;
        Symbols::draw(painter, m_symbol, symbol, thinned(tint, share));
        content.setLeft(content.left() + symbolWidth());
    }
    painter.setPen(thinned(Palette::textPrimary, share));
    painter.drawText(content.adjusted(0, 0, 2, 0), Qt::AlignLeft | Qt::AlignVCenter, shown);
}

} // namespace nubble
