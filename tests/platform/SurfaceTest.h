#pragma once

#include <QScreen>
#include <QWindow>

#include "Platform/Backend.h"
#include "Platform/Home.h"
#include "platform/ForeignApplication.h"

namespace nubble {

// A white window of this program on the screen, over red ones of another. Lengths within the window are
// device-independent, those of the screen are pixels.
class SurfaceTest : public QObject {
protected:
    [[nodiscard]] QRect onScreen() const
    {
        xcb_connection_t *x11 = m_others->x11().get();
        const auto window = m_window->id();
        const XcbReply<xcb_get_geometry_reply_t> size(
            xcb_get_geometry_reply(x11, xcb_get_geometry(x11, window), nullptr));
        const XcbReply<xcb_translate_coordinates_reply_t> position(xcb_translate_coordinates_reply(
            x11, xcb_translate_coordinates(x11, window, m_others->root(), 0, 0), nullptr));
        return size && position ? QRect(position->dst_x, position->dst_y, size->width, size->height)
                                : QRect();
    }
    [[nodiscard]] QPoint pixelAt(const QPointF &position) const
    {
        return onScreen().topLeft() + (position * m_scale).toPoint();
    }
    static QColor colourOf(const QPoint &pixel)
    {
        return QGuiApplication::primaryScreen()->grabWindow(0).toImage().pixelColor(pixel);
    }
    [[nodiscard]] bool clickReachesWindow(const QPointF &position)
    {
        PlainWindow::pressed = nullptr;
        for (int tries = 0; tries < 10 && !PlainWindow::pressed; ++tries) {
            // Gets lost while the window manager lets go of the pointer.
            userPointsAt(pixelAt(position), QStringLiteral("click 1"));
            (void)QTest::qWaitFor([] { return PlainWindow::pressed != nullptr; }, 1500);
        }
        if (!PlainWindow::pressed)
            qFatal("a click reaches nobody");
        return PlainWindow::pressed == &*m_window;
    }
    static QPainterPath outlineOf(const QRectF &rect)
    {
        QPainterPath path;
        path.addRect(rect);
        return path;
    }
    void openWindows() // anew
    {
        m_window.reset();
        m_others.emplace();
        m_work = m_others->open({0, 0, 1280, 800}, Qt::red);
        m_others->focus(m_work);
        m_window.emplace(Qt::white);
    }

    const Backend m_backend = makeBackend(Home(QStringLiteral("/nonexistent")));
    const qreal m_scale = QGuiApplication::primaryScreen()->devicePixelRatio();
    std::optional<ForeignApplication> m_others;
    std::optional<PlainWindow> m_window;
    xcb_window_t m_work = 0; // the other program's, which has the keyboard at first
};

} // namespace nubble
