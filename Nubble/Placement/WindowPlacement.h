#pragma once

#include <QPoint>
#include <QRect>
#include <QRectF>
#include <QSize>

#include <optional>

#include "Placement/NotchEdge.h"

namespace nubble {

// Where the notch's body is, in screen coordinates.
struct WindowAnchor {
    QRectF body;
    NotchEdge edge = NotchEdge::Right;
};

// The top left corner of a window that opens beside the body, or in the middle when there is none, and keeps
// a margin within what is visible. One that is larger keeps it at the top and at the right.
[[nodiscard]] QPoint placeBeside(
    const std::optional<WindowAnchor> &anchor, const QSize &size, const QRectF &visible);

// That of a window in the upper part of the screen, in the middle from side to side; kept within what is
// visible in the same way.
[[nodiscard]] QPoint placeInUpperPart(const QSize &size, const QRectF &screen, const QRectF &visible);

// Where a tool tip of that size stands: at the side of its control that is away from `edge`, or at another
// one where there is no room, and within the screen. Over the control only where the screen has no room
// beside it.
[[nodiscard]] QRect placeToolTip(const QRect &control, const QSize &size, const QRect &screen, Qt::Edge edge);

} // namespace nubble
