#pragma once

#include <QRect>

#include "Placement/NotchEdge.h"

namespace nubble {

// Where a round cell of the body, which the pointer may touch beyond what it shows, has its circle and the
// line of text beside that.
struct CellFrame {
    QRect geometry; // of the cell, in the coordinates that its area was given in
    double unit = 1;
    QPointF center; // of the circle, in units from the cell's corner; so is the text
    QRectF text;

    [[nodiscard]] QRect shown() const; // the circle with its focus ring, and the text; pixels in the cell
};

// `area` and `center` are given in pixels, the line's height in units. The text is below the circle, or above
// it where below is the screen's edge.
[[nodiscard]] CellFrame cellFrame(
    const QRectF &area, const QPointF &center, NotchEdge edge, double lineHeight, double unit);

} // namespace nubble
