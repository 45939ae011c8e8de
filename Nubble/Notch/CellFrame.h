#pragma once

#include <QRect>

#include "Placement/NotchEdge.h"

namespace nubble {

// Where a round cell of the body and the line of text beside it are.
struct CellFrame {
    static constexpr double margin = 6; // around the circle, which the pointer may touch as well

    QRect geometry; // of the cell, in the coordinates of the circle's centre that was given
    QPointF center; // of the circle, in the cell's coordinates
    QRectF text;    // in the cell's coordinates
};

// The text is below the circle, or above it where below is the screen's edge.
[[nodiscard]] CellFrame cellFrameAround(const QPointF &center, NotchEdge edge, double lineHeight);

} // namespace nubble
