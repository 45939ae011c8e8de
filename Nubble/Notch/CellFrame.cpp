#include "Notch/CellFrame.h"

#include <QTransform>

#include "Placement/Layout.h"

namespace nubble {

namespace {

constexpr double half = Layout::ringDiameter / 2;
constexpr double margin = 8;     // around the circle, for its focus ring and the badge outside it
constexpr double textMargin = 6; // beside it, for a wider text

} // namespace

QRect CellFrame::shown() const
{
    const QRectF shown = QRectF(center - QPointF(half, half), QSizeF(2 * half, 2 * half))
                             .marginsAdded({margin, margin, margin, margin})
                             .united(text);
    return QTransform::fromScale(unit, unit).mapRect(shown).toAlignedRect();
}

CellFrame cellFrame(const QRectF &area, const QPointF &center, NotchEdge edge, double lineHeight, double unit)
{
    const QRect geometry = area.toRect();
    const QPointF middle = (center - geometry.topLeft()) / unit;
    const double distance = half + Layout::percentGap + lineHeight / 2;
    QRectF text(0, 0, 2 * half + 2 * textMargin, lineHeight);
    text.moveCenter(middle + QPointF(0, edge == NotchEdge::Bottom ? -distance : distance));
    return {geometry, unit, middle, text};
}

} // namespace nubble
