#pragma once

#include <QPainter>
#include <QRectF>

#include <cmath>

namespace nubble::PixelGrid {

// Places that are no whole pixels of the device, as they are drawn: moved to the nearest ones, so that
// straight edges are sharp and what is symmetrical stays so.

[[nodiscard]] inline QPointF aligned(const QPainter &painter, const QPointF &point)
{
    const QTransform &onDevice = painter.deviceTransform();
    const QPointF exact = onDevice.map(point);
    return onDevice.inverted().map(QPointF(std::round(exact.x()), std::round(exact.y())));
}

[[nodiscard]] inline QRectF aligned(const QPainter &painter, const QRectF &rect)
{
    return {aligned(painter, rect.topLeft()), aligned(painter, rect.bottomRight())};
}

} // namespace nubble::PixelGrid
