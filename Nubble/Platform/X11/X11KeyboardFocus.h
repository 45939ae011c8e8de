#pragma once

#include <QTimer>

#include <memory>
#include <xcb/xcb.h>

namespace nubble {

class X11Connection;

// The keyboard lent to a window that the window manager does not manage, and given back, or on to a window
// that is activated meanwhile. Main thread only.
class X11KeyboardFocus {
public:
    explicit X11KeyboardFocus(std::shared_ptr<const X11Connection> x11);

    [[nodiscard]] bool lend(xcb_window_t window); // whether it is there

    // The window manager has been asked to activate that window, which may take a while to come on the
    // screen.
    void handOn(xcb_window_t window);

    // Back to where it was before when `window` still has it, unless it is about to be handed on; where that
    // window has gone, to the active one.
    void takeBack(xcb_window_t window);

private:
    [[nodiscard]] xcb_window_t focusedWindow() const;
    [[nodiscard]] xcb_window_t activeWindow() const; // XCB_WINDOW_NONE: none
    [[nodiscard]] bool focus(xcb_window_t window) const;
    [[nodiscard]] bool getsKeys(xcb_window_t window) const;

    std::shared_ptr<const X11Connection> m_x11;
    QTimer m_handingOn;                        // runs while an activation may still be under way
    xcb_window_t m_borrower = XCB_WINDOW_NONE; // none: nobody
    xcb_window_t m_previous = XCB_WINDOW_NONE; // what the borrower gives it back to
};

} // namespace nubble
