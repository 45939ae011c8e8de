#include "Platform/X11/X11KeyboardFocus.h"

#include <QDeadlineTimer>
#include <QThread>

#include <chrono>

#include "Platform/X11/X11Connection.h"

namespace nubble {

namespace {

constexpr std::chrono::seconds patience{1};               // with a window manager that has been asked
constexpr std::chrono::milliseconds compositorsDelay{60}; // those seen needed five

} // namespace

X11KeyboardFocus::X11KeyboardFocus(std::shared_ptr<const X11Connection> x11) : m_x11(std::move(x11))
{
    m_handingOn.setSingleShot(true);
    m_handingOn.setInterval(patience);
    QObject::connect(&m_handingOn, &QTimer::timeout, &m_handingOn, [this] { takeBack(m_borrower); });
}

xcb_window_t X11KeyboardFocus::focusedWindow() const
{
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_x11->get(), xcb_get_input_focus(m_x11->get()), nullptr));
    return reply ? reply->focus : xcb_window_t{XCB_WINDOW_NONE};
}

// Some window managers write another value behind the window.
xcb_window_t X11KeyboardFocus::activeWindow() const
{
    const auto active = X11Property(*m_x11, m_x11->root(), m_x11->atom(X11Atom::NetActiveWindow)).numbers();
    return active.empty() ? xcb_window_t{XCB_WINDOW_NONE} : active.front();
}

// Some window managers focus with the time of the last event that they have seen, and the server does not
// listen to one from before this focus: so they are shown an event.
bool X11KeyboardFocus::focus(xcb_window_t window) const
{
    const auto request =
        xcb_set_input_focus_checked(m_x11->get(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    xcb_change_property(
        m_x11->get(), XCB_PROP_MODE_APPEND, m_x11->root(), m_x11->atom(X11Atom::Time), XCB_ATOM_INTEGER, 32,
        0, nullptr);
    const XcbReply<xcb_generic_error_t> error(xcb_request_check(m_x11->get(), request));
    return !error;
}

bool X11KeyboardFocus::lend(xcb_window_t window)
{
    m_handingOn.stop();
    if (const xcb_window_t before = focusedWindow(); before != window) {
        m_borrower = window;
        m_previous = before;
        if (!focus(window))
            return false;
    }
    return !m_x11->isXwayland() || getsKeys(window);
}

// Under a Wayland compositor the focus alone means little. Some take it back at once, some call the focused
// window the active one; the others send no keys while none of the X server's windows is that.
bool X11KeyboardFocus::getsKeys(xcb_window_t window) const
{
    xcb_window_t active = activeWindow();
    for (const QDeadlineTimer left(compositorsDelay); active != window && !left.hasExpired();) {
        if (focusedWindow() != window)
            return false;
        QThread::msleep(2);
        active = activeWindow();
    }
    return active != XCB_WINDOW_NONE;
}

void X11KeyboardFocus::handOn(xcb_window_t window)
{
    if (m_borrower == XCB_WINDOW_NONE || focusedWindow() != m_borrower)
        return;
    m_previous = window;
    if (!focus(window)) // it is iconified, or on another desktop
        m_handingOn.start();
}

void X11KeyboardFocus::takeBack(xcb_window_t window)
{
    if (m_handingOn.isActive())
        return;
    const xcb_window_t borrower = std::exchange(m_borrower, xcb_window_t{XCB_WINDOW_NONE});
    if (borrower == XCB_WINDOW_NONE || focusedWindow() != window)
        return;
    const xcb_window_t active = activeWindow();
    if (!focus(m_previous) && (active == XCB_WINDOW_NONE || !focus(active)))
        (void)focus(XCB_INPUT_FOCUS_POINTER_ROOT);
}

} // namespace nubble
