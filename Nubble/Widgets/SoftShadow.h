#pragma once

#include <QMargins>
#include <QPainterPath>

#include <span>

class QPainter;

namespace nubble {

// One of the layers that a shadow is made of; device-independent pixels.
struct ShadowLayer {
    double drop;    // how far it falls below what casts it
    double reach;   // how far it is blurred outwards
    double density; // where it is darkest, 0 to 1
};

// A thin one that draws the edge, and a wide one that lifts the card from what is below.
inline constexpr ShadowLayer cardShadow[]{{1, 3, 0.22}, {8, 28, 0.32}};
inline constexpr ShadowLayer toolTipShadow[]{{1, 3, 0.22}, {2, 9, 0.28}};

// Draws the shadow of `outline`, below it as well. For pictures that are kept: it costs some milliseconds.
void drawSoftShadow(QPainter &painter, const QPainterPath &outline, std::span<const ShadowLayer> layers);

} // namespace nubble
