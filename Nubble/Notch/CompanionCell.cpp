#include "Notch/CompanionCell.h"

#include <algorithm>
#include <cmath>

#include "Notch/CellFrame.h"
#include "Notch/NotchAction.h"
#include "Placement/Layout.h"
#include "Widgets/Palette.h"
#include "Widgets/PixelGrid.h"
#include "Widgets/Symbols.h"
#include "Widgets/Typography.h"
#include "Widgets/Units.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr double radius = Layout::ringDiameter / 2;
constexpr double symbolSide = 14;
constexpr double badgeHeight = 12;
constexpr int mostTold = 99;

} // namespace

CompanionCell::CompanionCell(NotchAction &action, QWidget *parent)
    : QAbstractButton(parent), m_action(action), m_hover(this)
{
    setFocusPolicy(Qt::TabFocus);
    connect(this, &QAbstractButton::clicked, &action, &NotchAction::run);
    connect(&action, &NotchAction::lookChanged, this, &CompanionCell::follow);
    follow();
}

void CompanionCell::place(const CellFrame &frame)
{
    setGeometry(frame.geometry);
    m_center = frame.center;
    m_textRect = frame.text;
    update();
}

void CompanionCell::follow()
{
    setToolTip(m_action.look().helpText);
    setAccessibleName(m_action.look().helpText);
    update();
}

void CompanionCell::paintEvent(QPaintEvent *)
{
    const NotchAction::Look &look = m_action.look();
    UnitPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF corner = m_center - QPointF(radius, radius);
    painter.translate(PixelGrid::aligned(painter, corner) - corner);
    painter.setPen(hasFocus() ? QPen(Palette::focus, 1.5) : QPen(Qt::NoPen));
    painter.setBrush(m_hover.lifted(Palette::control, isDown()));
    painter.drawEllipse(m_center, radius - 0.75, radius - 0.75);
    const QPointF half(symbolSide / 2, symbolSide / 2);
    Symbols::draw(
        painter, look.symbol, QRectF(m_center - half, QSizeF(symbolSide, symbolSide)),
        look.badge > 0 ? Palette::quenwickText : Palette::textSecondary);
    if (look.badge > 0)
        drawBadge(painter, painter.area().right());
    painter.setFont(Typography::percent());
    painter.setPen(Palette::textPrimary);
    painter.drawText(m_textRect, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextSingleLine, look.caption);
}

void CompanionCell::drawBadge(QPainter &painter, double end) const
{
    const int count = m_action.look().badge;
    const QString text = count > mostTold ? u"%1+"_s.arg(mostTold) : QString::number(count);
    painter.setFont(Typography::percent());
    const double width = std::max(badgeHeight, std::ceil(painter.fontMetrics().horizontalAdvance(text)) + 6);
    // Over the circle's upper right, within the cell.
    QRectF badge(0, 0, width, badgeHeight);
    badge.moveCenter(m_center + QPointF(radius * 0.72, -radius * 0.72));
    badge.moveRight(std::min(badge.right(), end - 0.5));
    painter.setPen(QPen(Palette::body, 1.5));
    painter.setBrush(Palette::quenwick);
    painter.drawRoundedRect(badge, badgeHeight / 2, badgeHeight / 2);
    painter.setPen(Palette::textPrimary);
    painter.drawText(badge, Qt::AlignCenter, text);
}

} // namespace nubble
