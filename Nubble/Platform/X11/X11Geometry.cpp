#include "Platform/X11/X11Geometry.h"

#include <QBitmap>
#include <QPainter>
#include <QPainterPath>
#include <QRegion>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <xcb/randr.h>

#include "Platform/X11/X11Connection.h"

namespace nubble::X11Geometry {

namespace {

// X rectangles have 16-bit coordinates.
int16_t coordinate(qreal value)
{
    using Limits = std::numeric_limits<int16_t>;
    return static_cast<int16_t>(std::clamp<qreal>(value, Limits::min(), Limits::max()));
}

xcb_rectangle_t rectangle(qreal left, qreal top, qreal right, qreal bottom)
{
    const int16_t x = coordinate(left);
    const int16_t y = coordinate(top);
    return {
        x, y, static_cast<uint16_t>(std::max(0, coordinate(right) - x)),
        static_cast<uint16_t>(std::max(0, coordinate(bottom) - y))};
}

int along(int start, int length, int screenStart, int screenLength, int deviceLength, qreal scale)
{
    const int deviceWindow = qRound(length * scale);
    if (start + length == screenStart + screenLength)
        return screenStart + deviceLength - deviceWindow;
    return screenStart + qRound((start - screenStart) * scale);
}

std::optional<QRect> monitorAt(const X11Connection &x11, const QPoint &topLeft)
{
    if (!x11.offers(xcb_randr_id))
        return std::nullopt;
    const XcbReply<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(x11.get(), xcb_randr_get_monitors(x11.get(), x11.root(), 1), nullptr));
    if (!reply)
        return std::nullopt;
    for (auto each = xcb_randr_get_monitors_monitors_iterator(reply.get()); each.rem > 0;
         xcb_randr_monitor_info_next(&each))
        if (QPoint(each.data->x, each.data->y) == topLeft)
            return QRect(each.data->x, each.data->y, each.data->width, each.data->height);
    return std::nullopt;
}

} // namespace

std::vector<xcb_rectangle_t> deviceRects(const QPainterPath &outline, const QSize &window, qreal scale)
{
    const QSize pixels(qRound(window.width() * scale), qRound(window.height() * scale));
    if (pixels.isEmpty())
        return {};
    QBitmap picture(pixels);
    picture.clear();
    QPainter painter(&picture);
    painter.scale(scale, scale);
    painter.fillPath(outline, Qt::color1);
    painter.end();

    std::vector<xcb_rectangle_t> result;
    for (const QRect &rect : QRegion(picture))
        result.push_back(rectangle(rect.left(), rect.top(), rect.right() + 1, rect.bottom() + 1));
    return result;
}

QPoint devicePosition(const QRect &frame, const QRect &screen, const QRect &deviceScreen, qreal scale)
{
    return {
        along(frame.x(), frame.width(), screen.x(), screen.width(), deviceScreen.width(), scale),
        along(frame.y(), frame.height(), screen.y(), screen.height(), deviceScreen.height(), scale)};
}

QRect deviceScreenAt(const X11Connection &x11, const QPoint &topLeft)
{
    if (const std::optional<QRect> monitor = monitorAt(x11, topLeft))
        return *monitor;
    const XcbReply<xcb_get_geometry_reply_t> root(
        xcb_get_geometry_reply(x11.get(), xcb_get_geometry(x11.get(), x11.root()), nullptr));
    return root ? QRect(0, 0, root->width, root->height)
                : QRect(0, 0, x11.screen().width_in_pixels, x11.screen().height_in_pixels);
}

} // namespace nubble::X11Geometry
