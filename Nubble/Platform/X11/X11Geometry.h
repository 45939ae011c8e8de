#pragma once

#include <QRect>

#include <vector>
#include <xcb/xcb.h>

class QPainterPath;
class QSize;

namespace nubble {

class X11Connection;

// From device-independent window coordinates to the server's pixels; `scale` is pixels per unit.
namespace X11Geometry {

// The pixels whose centres lie within the outline.
[[nodiscard]] std::vector<xcb_rectangle_t> deviceRects(
    const QPainterPath &outline, const QSize &window, qreal scale);

// Where the window's top left pixel belongs. A window that touches an edge of its screen in `frame` touches
// the edge's last pixel, however the screen's size was rounded. `screen` is the screen in device-independent
// pixels, `deviceScreen` in pixels; both have the same top left corner.
[[nodiscard]] QPoint devicePosition(
    const QRect &frame, const QRect &screen, const QRect &deviceScreen, qreal scale);

// The monitor whose top left corner is there, in pixels; the whole X screen when there is no such monitor.
[[nodiscard]] QRect deviceScreenAt(const X11Connection &x11, const QPoint &topLeft);

} // namespace X11Geometry

} // namespace nubble
