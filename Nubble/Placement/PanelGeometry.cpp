#include "Placement/PanelGeometry.h"

#include <algorithm>
#include <cmath>

#include "Placement/Layout.h"
#include "Placement/PanelShapes.h"

namespace nubble {

namespace {

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
QMargins cardMargins(NotchEdge edge)
{
    const int around = qRound(Layout::cardPadding);
    const int tailSide = qRound(Layout::cardPadding + Layout::tailSpace);
    QMargins margins(around, around, around, around);
    switch (edge) {
    case NotchEdge::Right:
        margins.setRight(tailSide);
        break;
    case NotchEdge::Left:
        margins.setLeft(tailSide);
        break;
    case NotchEdge::Top:
        margins.setTop(tailSide);
        break;
    case NotchEdge::Bottom:
        margins.setBottom(tailSide);
        break;
    }
    return margins;
}

} // namespace

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

// Beside the body, as near to the ring as the ends of the screen allow.
QRect PanelGeometry::cardRect(const QSize &size) const
{
    const QMargins margins = cardMargins(edge);
    QRectF card(QPointF(), size.grownBy(margins));
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
    const QPoint corner = fittedAlong(edge, card, screen).topLeft().toPoint();
    return {corner + QPoint(margins.left(), margins.top()), size};
}

double PanelGeometry::roomForCard() const
{
    const double beside = isVertical(edge) ? 0 : Layout::cardStart + Layout::tailSpace;
    return screen.height() - beside - 2 * Layout::cardPadding;
}

PanelGeometry panelGeometry(const Layout &layout, NotchEdge edge, double offset, const QRectF &screen)
{
    const QRectF window = alignedAlong(edge, layout.windowFrame(edge, offset, screen));
    const double room = std::ceil(Layout::cardPadding);
    const QMarginsF around = isVertical(edge) ? QMarginsF(0, room, 0, room) : QMarginsF(room, 0, room, 0);
    const QRectF cards =
        fittedAlong(edge, layout.cardArea(edge).translated(window.topLeft()).marginsAdded(around), screen);
    const QRectF shadows =
        cards.marginsAdded(cardShadowRoom - static_cast<int>(Layout::cardPadding)) & screen;

    PanelGeometry geometry;
    geometry.edge = edge;
    geometry.frame = (window.marginsAdded(around) | cards | shadows).toAlignedRect();
    geometry.screen = screen.translated(-geometry.frame.topLeft());
    geometry.origin = window.topLeft() - geometry.frame.topLeft();
    geometry.body = layout.bodyRect(edge).translated(geometry.origin);
    geometry.ringCenter = layout.ringCenter(edge) + geometry.origin;
    return geometry;
}

} // namespace nubble
