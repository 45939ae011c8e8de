#include "Placement/PanelGeometry.h"

#include <algorithm>
#include <cmath>

#include "Placement/Layout.h"
#include "Placement/PanelShapes.h"

namespace nubble {

namespace {

QRectF scaled(const QRectF &rect, double factor)
{
    return {rect.topLeft() * factor, rect.size() * factor};
}

// Moved along the edge by as little as brings it onto the screen; what is too long starts where the screen
// does.
QRectF fittedAlong(NotchEdge edge, QRectF rect, const QRectF &screen)
{
    if (isVertical(edge))
        rect.moveTop(std::max(screen.top(), std::min(rect.top(), screen.bottom() - rect.height())));
    else
        rect.moveLeft(std::max(screen.left(), std::min(rect.left(), screen.right() - rect.width())));
    return rect;
}

// What sums leave of a pixel is none.
QRect wholePixels(const QRectF &rect)
{
    constexpr double hair = 1e-6;
    return rect.adjusted(hair, hair, -hair, -hair).toAlignedRect();
}

// Along the edge the panel lies on whole pixels; across, it touches the edge.
QRectF alignedAlong(NotchEdge edge, QRectF window)
{
    if (isVertical(edge))
        window.moveTop(std::round(window.top()));
    else
        window.moveLeft(std::round(window.left()));
    return window;
}

// What the layout keeps free around a card, on whole pixels.
QMargins cardMargins(NotchEdge edge, double unit)
{
    const int around = qRound(Layout::cardPadding * unit);
    const int tailSide = qRound((Layout::cardPadding + Layout::tailSpace) * unit);
    const int more = tailSide - around;
    const QMargins margins(around, around, around, around);
    return margins + onlyOn(edge, QMargins(more, more, more, more)).toMargins();
}

// Of the screen's height, in units: what no card has.
double heightBesideCard(NotchEdge edge)
{
    return (isVertical(edge) ? 0 : Layout::cardStart + Layout::tailSpace) + 2 * Layout::cardPadding;
}

// With which the body fits on its edge, and on the screen every card that does not scroll.
double largestUnit(const Layout &layout, NotchEdge edge, const QSizeF &screen)
{
    return std::min(
        Layout::along(edge, screen) / layout.bodyLength(edge),
        screen.height() / (Layout::tallestStillCard + heightBesideCard(edge)));
}

} // namespace

QPointF PanelGeometry::placed(const QPointF &point) const
{
    return origin + point * unit;
}

QRectF PanelGeometry::placed(const QRectF &rect) const
{
    return scaled(rect, unit).translated(origin);
}

PanelGeometry PanelGeometry::cutTo(const QRect &part) const
{
    PanelGeometry cut = *this;
    cut.frame = frame & part;
    return cut.moved(frame.topLeft() - cut.frame.topLeft());
}

PanelGeometry PanelGeometry::moved(const QPointF &by) const
{
    PanelGeometry moved = *this;
    for (QRectF *rect : {&moved.screen, &moved.body})
        rect->translate(by);
    for (QPointF *point : {&moved.origin, &moved.ringCenter})
        *point += by;
    return moved;
}

int PanelGeometry::offset() const
{
    return -qRound(isVertical(edge) ? screen.top() : screen.left());
}

QMargins PanelGeometry::cardShadow() const
{
    return cardShadowRoom * unit;
}

// Beside the body, as near to the ring as the ends of the screen allow.
QRect PanelGeometry::cardRect(const QSize &size) const
{
    const QMargins margins = cardMargins(edge, unit);
    const double start = Layout::cardStart * unit;
    QRectF card(QPointF(), size.grownBy(margins));
    card.moveCenter(ringCenter);
    switch (edge) {
    case NotchEdge::Right:
        card.moveRight(screen.right() - start);
        break;
    case NotchEdge::Left:
        card.moveLeft(screen.left() + start);
        break;
    case NotchEdge::Top:
        card.moveTop(screen.top() + start);
        break;
    case NotchEdge::Bottom:
        card.moveBottom(screen.bottom() - start);
        break;
    }
    const QPoint corner = fittedAlong(edge, card, screen).topLeft().toPoint();
    return {corner + QPoint(margins.left(), margins.top()), size};
}

double PanelGeometry::roomForCard() const
{
    return screen.height() - heightBesideCard(edge) * unit;
}

PanelGeometry panelGeometry(
    const Layout &layout, NotchEdge edge, double offset, const QRectF &screen, double unit)
{
    unit = std::min(unit, largestUnit(layout, edge, screen.size()));
    QRectF window = scaled(layout.windowFrame(edge, offset / unit, scaled(screen, 1 / unit)), unit);
    const QRectF body = scaled(layout.bodyRect(edge), unit).translated(window.topLeft());
    window =
        alignedAlong(edge, window.translated(fittedAlong(edge, body, screen).topLeft() - body.topLeft()));
    const double room = std::ceil(Layout::cardPadding * unit);
    const QMarginsF around = isVertical(edge) ? QMarginsF(0, room, 0, room) : QMarginsF(room, 0, room, 0);
    const QRectF cards = fittedAlong(
        edge, scaled(layout.cardArea(edge), unit).translated(window.topLeft()).marginsAdded(around), screen);
    const QRectF shadows =
        cards.marginsAdded((cardShadowRoom - static_cast<int>(Layout::cardPadding)) * unit) & screen;

    PanelGeometry geometry;
    geometry.edge = edge;
    geometry.unit = unit;
    geometry.frame = wholePixels(window.marginsAdded(around) | cards | shadows);
    geometry.screen = screen.translated(-geometry.frame.topLeft());
    geometry.origin = window.topLeft() - geometry.frame.topLeft();
    geometry.body = geometry.placed(layout.bodyRect(edge));
    geometry.ringCenter = geometry.placed(layout.ringCenter(edge));
    return geometry;
}

} // namespace nubble
