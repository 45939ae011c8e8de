#pragma once

#include <QPainterPath>

class QPainter;

namespace nubble {

// Draws the shadow that falls around `outline`, up to `reach` pixels beyond it, and nothing inside it.
void drawSoftShadow(QPainter &painter, const QPainterPath &outline, double reach);

} // namespace nubble
