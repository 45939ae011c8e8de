#include "Placement/WindowPlacement.h"

#include <algorithm>

namespace nubble {

namespace {

constexpr double fromBody = 12;
constexpr double withinScreen = 8;

QPointF wantedCentre(const WindowAnchor &anchor, const QSizeF &size)
{
    const QRectF &body = anchor.body;
    switch (anchor.edge) {
    case NotchEdge::Right:
        return {body.left() - fromBody - size.width() / 2, body.center().y()};
    case NotchEdge::Left:
        return {body.right() + fromBody + size.width() / 2, body.center().y()};
    case NotchEdge::Top:
        return {body.center().x(), body.bottom() + fromBody + size.height() / 2};
    case NotchEdge::Bottom:
        break;
    }
    return {body.center().x(), body.top() - fromBody - size.height() / 2};
}

QPoint placed(const QPointF &centre, const QSizeF &size, const QRectF &visible)
{
    QRectF frame({}, size);
    frame.moveCenter(centre);
    const double left = std::min(
        std::max(frame.left(), visible.left() + withinScreen), visible.right() - withinScreen - size.width());
    const double top = std::max(
        std::min(frame.top(), visible.bottom() - withinScreen - size.height()), visible.top() + withinScreen);
    return QPointF(left, top).toPoint();
}

} // namespace

QPoint placeBeside(const std::optional<WindowAnchor> &anchor, const QSize &size, const QRectF &visible)
{
    return placed(anchor ? wantedCentre(*anchor, size) : visible.center(), size, visible);
}

QPoint placeInUpperPart(const QSize &size, const QRectF &screen, const QRectF &visible)
{
    constexpr double belowUpperQuarter = 80;
    return placed(
        {screen.center().x(), screen.top() + screen.height() / 4 + belowUpperQuarter}, size, visible);
}

} // namespace nubble
