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

QRect fitted(const QPointF &centre, const QSize &size, const QRectF &visible)
{
    const QRect room =
        visible.adjusted(withinScreen, withinScreen, -withinScreen, -withinScreen).toAlignedRect();
    QRectF frame({}, size.boundedTo(room.size()));
    frame.moveCenter(centre);
    return keptWithin({frame.topLeft().toPoint(), frame.size().toSize()}, room);
}

QRectF besideBody(QRectF visible, const WindowAnchor &anchor)
{
    constexpr double more = fromBody - withinScreen;
    switch (anchor.edge) {
    case NotchEdge::Right:
        visible.setRight(anchor.body.left() - more);
        break;
    case NotchEdge::Left:
        visible.setLeft(anchor.body.right() + more);
        break;
    case NotchEdge::Top:
        visible.setTop(anchor.body.bottom() + more);
        break;
    case NotchEdge::Bottom:
        visible.setBottom(anchor.body.top() - more);
        break;
    }
    return visible;
}

QRect placed(
    const QPointF &centre, const QSize &size, const QRectF &visible,
    const std::optional<WindowAnchor> &anchor)
{
    const QRect frame = fitted(centre, size, visible);
    const bool covers = anchor && anchor->body.intersects(frame);
    return covers ? fitted(centre, size, besideBody(visible, *anchor)) : frame;
}

Qt::Edge opposite(Qt::Edge side)
{
    switch (side) {
    case Qt::LeftEdge:
        return Qt::RightEdge;
    case Qt::RightEdge:
        return Qt::LeftEdge;
    case Qt::TopEdge:
        return Qt::BottomEdge;
    case Qt::BottomEdge:
        break;
    }
    return Qt::TopEdge;
}

QRect moved(QRect frame, const QRect &control, Qt::Edge side)
{
    frame.moveCenter(control.center());
    switch (side) {
    case Qt::LeftEdge:
        frame.moveRight(control.left() - 1);
        break;
    case Qt::RightEdge:
        frame.moveLeft(control.right() + 1);
        break;
    case Qt::TopEdge:
        frame.moveBottom(control.top() - 1);
        break;
    case Qt::BottomEdge:
        frame.moveTop(control.bottom() + 1);
        break;
    }
    return frame;
}

} // namespace

QRect keptWithin(QRect frame, const QRect &screen)
{
    frame.moveLeft(std::max(std::min(frame.left(), screen.right() - frame.width() + 1), screen.left()));
    frame.moveTop(std::max(std::min(frame.top(), screen.bottom() - frame.height() + 1), screen.top()));
    return frame;
}

QRect placeToolTip(const QRect &control, const QSize &size, const QRect &screen, Qt::Edge edge)
{
    for (const Qt::Edge each :
         {opposite(edge), edge, Qt::BottomEdge, Qt::TopEdge, Qt::LeftEdge, Qt::RightEdge}) {
        const QRect frame = keptWithin(moved({{}, size}, control, each), screen);
        if (!frame.intersects(control))
            return frame;
    }
    return keptWithin(moved({{}, size}, control, opposite(edge)), screen);
}

QRect placeBeside(const std::optional<WindowAnchor> &anchor, const QSize &size, const QRectF &visible)
{
    return placed(anchor ? wantedCentre(*anchor, size) : visible.center(), size, visible, anchor);
}

QRect placeInUpperPart(
    const std::optional<WindowAnchor> &anchor, const QSize &size, const QRectF &screen, const QRectF &visible)
{
    constexpr double belowUpperQuarter = 80;
    const QPointF centre(screen.center().x(), screen.top() + screen.height() / 4 + belowUpperQuarter);
    return placed(centre, size, visible, anchor);
}

} // namespace nubble
