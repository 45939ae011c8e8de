#pragma once

#include <memory>
#include <xcb/xcb.h>

namespace nubble {

class X11Connection;

// The keyboard lent to a window that the window manager does not manage, and given back. Main thread only.
class X11KeyboardFocus {
public:
    explicit X11KeyboardFocus(std::shared_ptr<const X11Connection> x11);

    void give(xcb_window_t window);

    // Back to where it was before, when `window` still has it; where that window has gone, to the active one.
    void takeBack(xcb_window_t window);

private:
    [[nodiscard]] xcb_window_t focusedWindow() const;
    [[nodiscard]] bool focus(xcb_window_t window) const;

    std::shared_ptr<const X11Connection> m_x11;
    xcb_window_t m_previous = XCB_INPUT_FOCUS_POINTER_ROOT;
};

} // namespace nubble
