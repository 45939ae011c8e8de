#pragma once

#include <QPainterPath>
#include <QRectF>

#include "Placement/NotchEdge.h"

namespace nubble {

// The collapsed body: flush with the screen's edge, concave shoulders where it leaves it, rounded where it
// ends.
[[nodiscard]] QPainterPath bodyOutline(NotchEdge edge, const QRectF &body);

// A card: a rounded rectangle with a tail of length `tail` that points to the edge. `tailAlong` is where it
// stands on that side, from the side's start; it keeps clear of the corners.
[[nodiscard]] QPainterPath cardOutline(NotchEdge edge, const QRectF &card, double tail, double tailAlong);

} // namespace nubble
