#include "Placement/PanelShapes.h"

#include <QTransform>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace nubble {

namespace {

constexpr double shoulder = 14;
constexpr double bodyRadius = 17;
constexpr double cardRadius = 18;
constexpr double tailHalfWidth = 13;
constexpr double tipRadius = 2.5;

// A quarter circle as a Bézier curve keeps its control points this far towards the corner.
constexpr double quarterArc = 0.5522847498;

void curveTo(QPainterPath &path, const QPointF &corner, const QPointF &end)
{
    const QPointF start = path.currentPosition();
    path.cubicTo(start + (corner - start) * quarterArc, end + (corner - end) * quarterArc, end);
}

// From the card's side, where the path is, round the tip and back: a slim one where it is long.
void tailTo(QPainterPath &path, double middle, double length)
{
    const double height = length - tipRadius;
    const double lean = std::atan2(tailHalfWidth * 0.6, height);
    const QPointF tip(middle, -height);
    const QPointF beside = tipRadius * QPointF(std::cos(lean), std::sin(lean)); // from the tip's middle
    const QPointF along = height * 0.35 * QPointF(-std::sin(lean), std::cos(lean));
    const QPointF inwards(tailHalfWidth * 0.55, 0);
    const QPointF left = tip - beside;
    const QPointF right = tip + QPointF(beside.x(), -beside.y());
    path.lineTo(middle - tailHalfWidth, 0);
    path.cubicTo(QPointF(middle - tailHalfWidth, 0) + inwards, left + along, left);
    const double degrees = qRadiansToDegrees(lean);
    path.arcTo(
        QRectF(tip - QPointF(tipRadius, tipRadius), QSizeF(2, 2) * tipRadius), 180 - degrees,
        2 * degrees - 180);
    path.cubicTo(
        right + QPointF(-along.x(), along.y()), QPointF(middle + tailHalfWidth, 0) - inwards,
        {middle + tailHalfWidth, 0});
}

// From coordinates in which x runs along the edge and y away from it, to those of `rect`, whose one side is
// the edge.
QTransform fromEdge(NotchEdge edge, const QRectF &rect)
{
    switch (edge) {
    case NotchEdge::Right:
        return {0, 1, -1, 0, rect.right(), rect.top()};
    case NotchEdge::Left:
        return {0, 1, 1, 0, rect.left(), rect.top()};
    case NotchEdge::Top:
        return {1, 0, 0, 1, rect.left(), rect.top()};
    case NotchEdge::Bottom:
        break;
    }
    return {1, 0, 0, -1, rect.left(), rect.bottom()};
}

} // namespace

QPainterPath bodyOutline(NotchEdge edge, const QRectF &body, double unit)
{
    const double length = (isVertical(edge) ? body.height() : body.width()) / unit;
    const double depth = (isVertical(edge) ? body.width() : body.height()) / unit;
    const double side = shoulder;
    QPainterPath path;
    path.moveTo(0, 0);
    curveTo(path, {side, 0}, {side, shoulder});
    path.lineTo(side, depth - bodyRadius);
    curveTo(path, {side, depth}, {side + bodyRadius, depth});
    path.lineTo(length - side - bodyRadius, depth);
    curveTo(path, {length - side, depth}, {length - side, depth - bodyRadius});
    path.lineTo(length - side, shoulder);
    curveTo(path, {length - side, 0}, {length, 0});
    path.closeSubpath();
    return (QTransform::fromScale(unit, unit) * fromEdge(edge, body)).map(path);
}

QPainterPath cardOutline(NotchEdge edge, const QRectF &card, double tail, double tailAlong)
{
    const double length = isVertical(edge) ? card.height() : card.width();
    const double depth = isVertical(edge) ? card.width() : card.height();
    const double clear = cardRadius + tailHalfWidth;
    const double middle = length > 2 * clear ? std::clamp(tailAlong, clear, length - clear) : length / 2;
    QPainterPath path;
    path.moveTo(cardRadius, 0);
    if (tail > tipRadius)
        tailTo(path, middle, tail);
    path.lineTo(length - cardRadius, 0);
    curveTo(path, {length, 0}, {length, cardRadius});
    path.lineTo(length, depth - cardRadius);
    curveTo(path, {length, depth}, {length - cardRadius, depth});
    path.lineTo(cardRadius, depth);
    curveTo(path, {0, depth}, {0, depth - cardRadius});
    path.lineTo(0, cardRadius);
    curveTo(path, {0, 0}, {cardRadius, 0});
    path.closeSubpath();
    return fromEdge(edge, card).map(path);
}

} // namespace nubble
