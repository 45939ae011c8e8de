#include "Platform/X11/X11FloatingSurface.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <chrono>
#include <xcb/shape.h>

#include "Platform/X11/X11Connection.h"
#include "Platform/X11/X11Geometry.h"

namespace nubble {

namespace {

constexpr uint32_t fromPager = 2; // the only source that no window manager keeps from the keyboard
constexpr uint32_t everyDesktop = 0xFFFFFFFF;
constexpr std::chrono::milliseconds patience{250}; // with a window manager that has been asked

} // namespace

X11FloatingSurface::X11FloatingSurface(QWidget &window, std::shared_ptr<const X11Connection> x11)
    : PlainFloatingSurface(window), m_x11(std::move(x11)), m_compositor(m_x11, X11Atom::CompositingManager)
{
    m_settling.setSingleShot(true);
    m_settling.setInterval(patience);
    connect(&m_settling, &QTimer::timeout, this, [this] {
        settle();
        if (!m_keyboardCame)
            takeKeyboard();
    });
    connect(&m_compositor, &X11SelectionWatch::changed, this, [this] {
        applyOutline();
        m_x11->flush();
        Q_EMIT translucencyChanged();
    });
    QCoreApplication::instance()->installNativeEventFilter(this);
}

// QWidget::winId() stays at the old window when Qt makes another one; the handle knows.
uint32_t X11FloatingSurface::nativeWindow() const
{
    const QWindow *handle = window().windowHandle();
    return handle && handle->handle() ? static_cast<uint32_t>(handle->winId()) : 0;
}

void X11FloatingSurface::place(const QRect &frame)
{
    m_frame = frame;
    PlainFloatingSurface::place(frame);
    if (window().isVisible())
        settle();
}

void X11FloatingSurface::orderFront()
{
    window().show();
    window().raise();
    m_keyboardCame = hasKeyboard();
    askForKeyboard();
    m_settling.start();
}

void X11FloatingSurface::orderOut()
{
    m_settling.stop();
    PlainFloatingSurface::orderOut();
    m_x11->flush();
}

// By opacity where somebody heeds that, else by an outline without anything in it.
void X11FloatingSurface::setUnseen(bool unseen)
{
    m_unseen = unseen;
    PlainFloatingSurface::setUnseen(unseen);
    applyOutline();
    m_x11->flush(); // Qt would wait for its next own request
}

void X11FloatingSurface::startMove()
{
    m_frame = {};
    PlainFloatingSurface::startMove();
}

void X11FloatingSurface::setOutline(const QPainterPath &outline)
{
    m_outline = outline;
    applyOutline();
    m_x11->flush();
}

bool X11FloatingSurface::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &window()) {
        switch (event->type()) {
        case QEvent::Show: // the window is there, and not mapped yet
            describe();
            applyOutline();
            break;
        case QEvent::Move:
        case QEvent::WindowActivate:
            if (m_settling.isActive())
                settle();
            break;
        case QEvent::Resize:
        case QEvent::ScreenChangeInternal:
            applyOutline();
            break;
        default:
            break;
        }
    }
    return PlainFloatingSurface::eventFilter(watched, event);
}

// Hot keys and menus that grab the keys for a while do not take the keyboard away, as Qt would say.
bool X11FloatingSurface::nativeEventFilter(const QByteArray &type, void *message, qintptr *)
{
    if (type != "xcb_generic_event_t")
        return false;
    const auto *focus = static_cast<const xcb_focus_in_event_t *>(message); // or out
    const int kind = focus->response_type & 0x7f;
    if ((kind != XCB_FOCUS_IN && kind != XCB_FOCUS_OUT) || focus->event != nativeWindow())
        return false;
    if (kind == XCB_FOCUS_IN && focus->detail != XCB_NOTIFY_DETAIL_POINTER) {
        m_keyboardCame = true;
        QMetaObject::invokeMethod(this, &X11FloatingSurface::noteKeyboard, Qt::QueuedConnection);
    }
    return kind == XCB_FOCUS_OUT && focus->mode == XCB_NOTIFY_MODE_GRAB;
}

// Window managers remove this when the window is taken off the screen. Qt adds to the states when it maps
// the window, and says the rest: type, no frame, above others.
void X11FloatingSurface::describe() const
{
    const auto native = nativeWindow();
    if (!native)
        return;
    const std::array<xcb_atom_t, 4> states{
        m_x11->atom(X11Atom::NetWmStateAbove), m_x11->atom(X11Atom::NetWmStateSticky),
        m_x11->atom(X11Atom::NetWmStateSkipTaskbar), m_x11->atom(X11Atom::NetWmStateSkipPager)};
    xcb_change_property(
        m_x11->get(), XCB_PROP_MODE_REPLACE, native, m_x11->atom(X11Atom::NetWmState), XCB_ATOM_ATOM, 32,
        states.size(), states.data());
    xcb_change_property(
        m_x11->get(), XCB_PROP_MODE_REPLACE, native, m_x11->atom(X11Atom::NetWmDesktop), XCB_ATOM_CARDINAL,
        32, 1, &everyDesktop);
}

void X11FloatingSurface::askForKeyboard() const
{
    if (const auto native = nativeWindow())
        m_x11->askWindowManager(
            native, X11Atom::NetActiveWindow, {fromPager, XCB_CURRENT_TIME, XCB_WINDOW_NONE});
    m_x11->flush();
}

// Window managers that reckon with a frame of theirs shift the window when it appears, and cut their own
// window to an outline that is shifted as well. What moves it later is the user.
void X11FloatingSurface::settle() const
{
    correctPosition();
    applyOutline();
    m_x11->flush();
}

// Where no window manager gives it, or none is there.
void X11FloatingSurface::takeKeyboard() const
{
    const auto native = nativeWindow();
    if (!native)
        return;
    m_x11->ignoreErrors(
        xcb_set_input_focus_checked(m_x11->get(), XCB_INPUT_FOCUS_POINTER_ROOT, native, XCB_CURRENT_TIME));
    m_x11->flush();
}

void X11FloatingSurface::correctPosition() const
{
    const auto native = nativeWindow();
    const QScreen *screen = QGuiApplication::screenAt(m_frame.center());
    if (!native || m_frame.isEmpty() || !screen)
        return;
    const QPoint wanted = X11Geometry::devicePosition(
        m_frame, screen->geometry(), X11Geometry::deviceScreenAt(*m_x11, screen->geometry().topLeft()),
        window().devicePixelRatioF());
    const XcbReply<xcb_translate_coordinates_reply_t> actual(xcb_translate_coordinates_reply(
        m_x11->get(), xcb_translate_coordinates(m_x11->get(), native, m_x11->root(), 0, 0), nullptr));
    if (!actual || QPoint(actual->dst_x, actual->dst_y) == wanted)
        return;
    const std::array<uint32_t, 2> values{
        static_cast<uint32_t>(wanted.x()), static_cast<uint32_t>(wanted.y())};
    m_x11->ignoreErrors(xcb_configure_window_checked(
        m_x11->get(), native, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values.data()));
}

void X11FloatingSurface::applyOutline() const
{
    const auto native = nativeWindow();
    if (!native || !m_x11->offers(xcb_shape_id))
        return;
    const QPainterPath &outline = m_unseen && !isTranslucent() ? QPainterPath() : m_outline;
    const auto rects = X11Geometry::deviceRects(outline, window().size(), window().devicePixelRatioF());
    const auto used = isTranslucent() ? XCB_SHAPE_SK_INPUT : XCB_SHAPE_SK_BOUNDING;
    const auto unused = isTranslucent() ? XCB_SHAPE_SK_BOUNDING : XCB_SHAPE_SK_INPUT;
    m_x11->ignoreErrors(
        xcb_shape_mask_checked(m_x11->get(), XCB_SHAPE_SO_SET, unused, native, 0, 0, XCB_PIXMAP_NONE));
    m_x11->ignoreErrors(xcb_shape_rectangles_checked(
        m_x11->get(), XCB_SHAPE_SO_SET, used, XCB_CLIP_ORDERING_YX_BANDED, native, 0, 0,
        static_cast<uint32_t>(rects.size()), rects.data()));
}

} // namespace nubble
