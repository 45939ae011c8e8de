#pragma once

#include <QRect>

#include "Placement/NotchEdge.h"

namespace nubble {

// Where a round cell of the body, which the pointer may touch beyond what it shows, has its circle and the
// line of text beside that.
struct CellFrame {
    QRect geometry; // of the cell, in the coordinates that its area was given in
    QPointF center; // of the circle, in the cell's coordinates; so is the text
    QRectF text;

    [[nodiscard]] QRect shown() const; // the circle with its focus ring, and the text
};

// The text is below the circle, or above it where below is the screen's edge.
[[nodiscard]] CellFrame cellFrame(
    const QRectF &area, const QPointF &center, NotchEdge edge, double lineHeight);

} // namespace nubble
