#include "Placement/PanelGeometry.h"

#include <algorithm>
#include <cmath>

#include "Placement/Layout.h"

namespace nubble {

namespace {

// The smallest move that brings the span into the range; a span that is too long starts where the range does.
double moveInto(double start, double end, double rangeStart, double rangeEnd)
{
    if (start < rangeStart || end - start > rangeEnd - rangeStart)
        return rangeStart - start;
    return end > rangeEnd ? rangeEnd - end : 0;
}

// `area` with the room for a card's shadow.
QPointF cardShiftOnto(NotchEdge edge, const QRectF &area, const QRectF &screen)
{
    if (isVertical(edge))
        return {0, moveInto(area.top(), area.bottom(), screen.top(), screen.bottom())};
    return {moveInto(area.left(), area.right(), screen.left(), screen.right()), 0};
}

// The nearest start at which a span of that length lies within the range; a longer one starts where the range
// does.
double fitted(double start, double length, double rangeStart, double rangeEnd)
{
    return std::max(rangeStart, std::min(start, rangeEnd - length));
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

} // namespace

PanelGeometry PanelGeometry::cutTo(const QRect &part) const
{
    PanelGeometry cut = *this;
    cut.frame = frame & part;
    const QPointF moved = frame.topLeft() - cut.frame.topLeft();
    for (QRectF *rect : {&cut.screen, &cut.body})
        rect->translate(moved);
    for (QPointF *point : {&cut.origin, &cut.ringCenter})
        *point += moved;
    return cut;
}

int PanelGeometry::offset() const
{
    return -qRound(isVertical(edge) ? screen.top() : screen.left());
}

// Beside the body, as near to the ring as the ends of the screen allow.
QRectF PanelGeometry::cardFrame(const QSizeF &size) const
{
    QRectF card(QPointF(), size);
    card.moveCenter(ringCenter);
    switch (edge) {
    case NotchEdge::Right:
        card.moveRight(screen.right() - Layout::cardStart);
        break;
    case NotchEdge::Left:
        card.moveLeft(screen.left() + Layout::cardStart);
        break;
    case NotchEdge::Top:
        card.moveTop(screen.top() + Layout::cardStart);
        break;
    case NotchEdge::Bottom:
        card.moveBottom(screen.bottom() - Layout::cardStart);
        break;
    }
    if (isVertical(edge))
        card.moveTop(fitted(card.top(), size.height(), screen.top(), screen.bottom()));
    else
        card.moveLeft(fitted(card.left(), size.width(), screen.left(), screen.right()));
    return card;
}

double PanelGeometry::roomForCard() const
{
    const double beside = isVertical(edge) ? 0 : Layout::cardStart + Layout::tailSpace;
    return screen.height() - beside - 2 * Layout::cardPadding;
}

PanelGeometry panelGeometry(const Layout &layout, NotchEdge edge, double offset, const QRectF &screen)
{
    const QRectF window = alignedAlong(edge, layout.windowFrame(edge, offset, screen));
    const QRectF area = layout.cardArea(edge).translated(window.topLeft());
    const double room = std::ceil(Layout::cardPadding);
    const QMarginsF around = isVertical(edge) ? QMarginsF(0, room, 0, room) : QMarginsF(room, 0, room, 0);
    const QPointF shift = cardShiftOnto(edge, area.marginsAdded(around), screen);

    PanelGeometry geometry;
    geometry.edge = edge;
    geometry.frame = window.united(area.translated(shift)).marginsAdded(around).toAlignedRect();
    geometry.screen = screen.translated(-geometry.frame.topLeft());
    geometry.origin = window.topLeft() - geometry.frame.topLeft();
    geometry.body = layout.bodyRect(edge).translated(geometry.origin);
    geometry.ringCenter = layout.ringCenter(edge) + geometry.origin;
    return geometry;
}

} // namespace nubble
