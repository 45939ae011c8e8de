#pragma once

#include <QList>
#include <QObject>
#include <QPainterPath>
#include <QRect>

class QWidget;

namespace nubble {

// What makes a top-level widget the panel: above all windows on all desktops, out of task bars and window
// switchers, never taking the focus by itself, taking the mouse in some places only. Made for a widget that
// has not been shown yet, and outlived by it. Lengths are device-independent pixels, window coordinates start
// at the top left. Main thread only.
class PanelSurface : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Moves and sizes the window, in screen coordinates, whatever docks reserve there.
    virtual void place(const QRect &frame) = 0;

    // Shows the window above all others without giving it the keyboard.
    virtual void orderFront() = 0;
    virtual void orderOut() = 0;

    // The only places that take mouse events; elsewhere they reach the window below.
    virtual void setActiveRects(const QList<QRectF> &rects) = 0;

    // Whether translucent pixels show what is below. Without that the window is cut to `outline`, and has to
    // be painted opaque.
    [[nodiscard]] virtual bool isTranslucent() const = 0;
    virtual void setOutline(const QPainterPath &outline) = 0;

    // The keyboard, on the user's explicit wish only; releasing gives it back to the window that had it.
    virtual void takeKeyboard() = 0;
    virtual void releaseKeyboard() = 0;

Q_SIGNALS:
    void translucencyChanged();
};

} // namespace nubble
