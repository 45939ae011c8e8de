#pragma once

#include <QMargins>
#include <QRect>
#include <QRectF>

#include "Placement/NotchEdge.h"

namespace nubble {

class Layout;

// The panel on a particular screen: its layout, on whole pixels. The native window is the layout's window,
// with room around it for shadows. Near a corner of the screen the card moves along the edge, so that it
// stays in sight with its shadow. On a small screen the unit is no larger than lets body and cards fit.
struct PanelGeometry {
    NotchEdge edge = NotchEdge::Right;
    double unit = 1; // that the layout counts in, as it is shown here
    QRect frame;     // of the native window, in screen coordinates
    QRectF screen;   // the screen, in the coordinates of the native window; so are the others
    QPointF origin;  // of the layout's window, which holds the body
    QRectF body;
    QPointF ringCenter;

    // What the layout gives of its window, in the native one's coordinates.
    [[nodiscard]] QPointF placed(const QPointF &point) const;
    [[nodiscard]] QRectF placed(const QRectF &rect) const;

    [[nodiscard]] PanelGeometry cutTo(const QRect &part) const; // of the frame, in screen coordinates
    [[nodiscard]] PanelGeometry moved(const QPointF &by) const; // within the frame, which stays
    [[nodiscard]] int offset() const;                      // of the frame's start from the start of the edge
    [[nodiscard]] QMargins cardShadow() const;             // the room for it around a card
    [[nodiscard]] QRect cardRect(const QSize &size) const; // where a card of that size stands
    [[nodiscard]] double roomForCard() const; // the height that the screen leaves to an open card

    bool operator==(const PanelGeometry &) const = default;
};

[[nodiscard]] PanelGeometry panelGeometry(
    const Layout &layout, NotchEdge edge, double offset, const QRectF &screen, double unit = 1);

} // namespace nubble
