#include "Platform/X11/X11KeyboardFocus.h"

#include "Platform/X11/X11Connection.h"

namespace nubble {

X11KeyboardFocus::X11KeyboardFocus(std::shared_ptr<const X11Connection> x11) : m_x11(std::move(x11)) { }

xcb_window_t X11KeyboardFocus::focusedWindow() const
{
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_x11->get(), xcb_get_input_focus(m_x11->get()), nullptr));
    return reply ? reply->focus : xcb_window_t {XCB_WINDOW_NONE};
}

bool X11KeyboardFocus::focus(xcb_window_t window) const
{
    const auto request =
        xcb_set_input_focus_checked(m_x11->get(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    const XcbReply<xcb_generic_error_t> error(xcb_request_check(m_x11->get(), request));
    return !error;
}

void X11KeyboardFocus::give(xcb_window_t window)
{
    const xcb_window_t before = focusedWindow();
    if (before == window)
        return;
    m_previous = before;
    (void)focus(window); // fails harmlessly while the window is not on the screen
}

void X11KeyboardFocus::takeBack(xcb_window_t window)
{
    if (focusedWindow() != window)
        return;
    const auto active = X11Property(*m_x11, m_x11->root(), m_x11->atom(X11Atom::NetActiveWindow)).numbers();
    if (focus(m_previous) || (!active.empty() && active.front() != 0 && focus(active.front())))
        return;
    (void)focus(XCB_INPUT_FOCUS_POINTER_ROOT);
}

} // namespace nubble
