#include "Platform/X11/X11ScreenCapture.h"

#include <QCursor>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>

#include "Platform/MainThread.h"
#include "Platform/X11/X11Connection.h"
#include "Platform/X11/X11Geometry.h"

namespace nubble {

namespace {

QScreen *screenUnderPointer()
{
    QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    return screen ? screen : QGuiApplication::screens().value(0);
}

// As QImage has them: four bytes each, in this machine's order.
bool areUsual(const xcb_get_image_reply_t &pixels, const QSize &size, const xcb_setup_t &server)
{
    constexpr auto byteOrder =
        QSysInfo::ByteOrder == QSysInfo::LittleEndian ? XCB_IMAGE_ORDER_LSB_FIRST : XCB_IMAGE_ORDER_MSB_FIRST;
    return pixels.depth == 24 && server.image_byte_order == byteOrder
        && xcb_get_image_data_length(&pixels) == qsizetype{4} * size.width() * size.height();
}

} // namespace

X11ScreenCapture::X11ScreenCapture(std::shared_ptr<const X11Connection> x11) : m_x11(std::move(x11)) { }

// Qt's own grab has the server copy the pixels once more, which takes twice as long.
QImage X11ScreenCapture::grab()
{
    assertMainThread("Nubble/Platform/X11/X11ScreenCapture");
    QScreen *screen = screenUnderPointer();
    if (!screen)
        return {};
    const QRect rect = X11Geometry::deviceScreenAt(*m_x11, screen->geometry().topLeft());
    const auto asked = xcb_get_image(
        m_x11->get(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_x11->root(), static_cast<int16_t>(rect.x()),
        static_cast<int16_t>(rect.y()), static_cast<uint16_t>(rect.width()),
        static_cast<uint16_t>(rect.height()), ~uint32_t{0});
    XcbReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(m_x11->get(), asked, nullptr));
    if (!reply)
        return {};
    if (!areUsual(*reply, rect.size(), *xcb_get_setup(m_x11->get())))
        return screen->grabWindow(0).toImage();
    const uchar *pixels = xcb_get_image_data(reply.get());
    return {pixels,    rect.width(),   rect.height(), 4 * rect.width(), QImage::Format_RGB32,
            std::free, reply.release()};
}

QImage X11ScreenCapture::grabPart(const QRect &part)
{
    assertMainThread("Nubble/Platform/X11/X11ScreenCapture");
    QScreen *screen = QGuiApplication::screenAt(part.center());
    if (!screen)
        return {};
    const QRect rect = part.intersected(screen->geometry()).translated(-screen->geometry().topLeft());
    return screen->grabWindow(0, rect.x(), rect.y(), rect.width(), rect.height()).toImage();
}

} // namespace nubble
