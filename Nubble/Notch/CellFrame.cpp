#include "Notch/CellFrame.h"

#include "Placement/Layout.h"

namespace nubble {

CellFrame cellFrameAround(const QPointF &center, NotchEdge edge, double lineHeight)
{
    constexpr double gap = 3.5; // between circle and text
    constexpr double half = Layout::ringDiameter / 2;
    constexpr double margin = CellFrame::margin;
    const double distance = half + gap + lineHeight / 2;
    const QRectF circle(center - QPointF(half, half), QSizeF(2 * half, 2 * half));
    QRectF text(0, 0, 2 * half + 2 * margin, lineHeight);
    text.moveCenter(center + QPointF(0, edge == NotchEdge::Bottom ? -distance : distance));
    const QRect geometry = circle.marginsAdded({margin, margin, margin, margin}).united(text).toAlignedRect();
    return {geometry, center - geometry.topLeft(), text.translated(-geometry.topLeft())};
}

} // namespace nubble
