#pragma once

#include <QMargins>
#include <QPainterPath>
#include <QRectF>

#include "Placement/NotchEdge.h"

namespace nubble {

// Around every card and floating window, for its shadow; device-independent pixels.
inline constexpr QMargins cardShadowRoom{28, 20, 28, 36};

// The collapsed body: flush with the screen's edge, concave shoulders where it leaves it, rounded where it
// ends. Its curves are in units of so many pixels.
[[nodiscard]] QPainterPath bodyOutline(NotchEdge edge, const QRectF &body, double unit = 1);

// A card: a rounded rectangle with a tail of length `tail` that points to the edge and has a round tip.
// `tailAlong` is where it stands on that side, from the side's start; it keeps clear of the corners.
[[nodiscard]] QPainterPath cardOutline(NotchEdge edge, const QRectF &card, double tail, double tailAlong);

} // namespace nubble
