#pragma once

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

// Moved by as little as brings it there; what is too large starts where the screen does.
[[nodiscard]] QRect keptWithin(QRect frame, const QRect &screen);

// Where a window of that size opens beside the body, or in the middle when there is none. It keeps a margin
// within what is visible, and is smaller where there is no room for it; it does not cover the body.
[[nodiscard]] QRect placeBeside(
    const std::optional<WindowAnchor> &anchor, const QSize &size, const QRectF &visible);

// The same for a window in the upper part of the screen, in the middle from side to side.
[[nodiscard]] QRect placeInUpperPart(
    const std::optional<WindowAnchor> &anchor, const QSize &size, const QRectF &screen,
    const QRectF &visible);

// Where a tool tip of that size stands: at the side of its control that is away from `edge`, or at another
// one where there is no room, and within the screen. Over the control only where the screen has no room
// beside it.
[[nodiscard]] QRect placeToolTip(const QRect &control, const QSize &size, const QRect &screen, Qt::Edge edge);

} // namespace nubble
