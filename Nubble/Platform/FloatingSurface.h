#pragma once

#include <QObject>
#include <QPainterPath>
#include <QRect>

namespace nubble {

// What makes a top-level widget a window that is called up over one's work and leaves again: above others and
// floating, on all desktops, in no task bar, without a frame, with the keyboard in it. Made for a widget that
// has not been shown yet, and outlived by it; the widget's native window may be another one after each
// showing. Lengths are device-independent pixels. Main thread only.
class FloatingSurface : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Moves and sizes the window, in screen coordinates.
    virtual void place(const QRect &frame) = 0;

    // Shows the window and asks for the keyboard, which comes later if at all, also where it is shown
    // already.
    virtual void orderFront() = 0;

    // Whoever had the keyboard before gets it back.
    virtual void orderOut() = 0;

    // Whether the window leaves no trace on the screen, though it is there and keeps the keyboard. The
    // desktop may take a while to draw what is below.
    virtual void setUnseen(bool unseen) = 0;

    // The window's own menus and dialogs count, and so does a moment in which somebody grabs the keys.
    [[nodiscard]] virtual bool hasKeyboard() const = 0;

    // Has the window follow the pointer from now on until the pressed button is released.
    virtual void startMove() = 0;

    // Whether translucent pixels show what is below. Without that the window is cut to `outline`, and has to
    // be painted opaque. Beyond the outline the mouse reaches the window below, where the desktop has a way.
    [[nodiscard]] virtual bool isTranslucent() const = 0;
    virtual void setOutline(const QPainterPath &outline) = 0; // in window coordinates

Q_SIGNALS:
    void keyboardTaken();
    void keyboardLost();
    void translucencyChanged();
};

} // namespace nubble
