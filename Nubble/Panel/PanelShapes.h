#pragma once

#include <QPainterPath>
#include <QRectF>

#include "Panel/NotchEdge.h"

namespace nubble {

// The collapsed body: flush with the screen's edge, concave shoulders where it leaves it, rounded where it ends.
[[nodiscard]] QPainterPath bodyOutline(NotchEdge edge, const QRectF &body);

// A card: a rounded rectangle with a tail of length `tail` that points to the edge, from the middle of that side.
[[nodiscard]] QPainterPath cardOutline(NotchEdge edge, const QRectF &card, double tail);

} // namespace nubble
