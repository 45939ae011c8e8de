#pragma once

#include <QMargins>
#include <QObject>
#include <QPainterPath>
#include <QRect>

class QMenu;
class QMouseEvent;
class QWidget;

namespace nubble {

// Where the panel's window belongs.
struct SurfacePlace {
    QRect frame;                   // in screen coordinates, whatever docks reserve there
    Qt::Edge edge = Qt::RightEdge; // of the screen, which the frame touches, or a bar that lies above it
    int offset = 0;                // of the frame's start from the start of that edge, its left or upper end

    bool operator==(const SurfacePlace &) const = default;
};

// What makes a top-level widget the panel: above all windows on all desktops, out of task bars and window
// switchers, never taking the focus by itself, taking the mouse in some places only. Made for a widget that
// has not been shown yet, and outlived by it. Lengths are device-independent pixels, window coordinates start
// at the top left. While the window is hidden there may be no native one, and the next one is another. Main
// thread only.
class PanelSurface : public QObject {
    Q_OBJECT

public:
    explicit PanelSurface(QWidget &window) : m_window(window) { }

    virtual void place(const SurfacePlace &place) = 0;

    // Shows the window above all others without giving it the keyboard.
    virtual void orderFront() = 0;
    virtual void orderOut() = 0;

    // Of what is shown. It alone takes mouse events; elsewhere they reach the window below.
    virtual void setOutline(const QPainterPath &outline) = 0;

    // Whether they do. If not, the window should be no larger than what it shows.
    [[nodiscard]] virtual bool passesClicksThrough() const { return true; }

    // How far bars that lie above every window reach into the primary screen from its edges.
    [[nodiscard]] virtual QMargins barsAbove() const { return {}; }

    // Whether translucent pixels show what is below. Without that the window is cut to its outline, and has
    // to be painted opaque.
    [[nodiscard]] virtual bool isTranslucent() const = 0;

    virtual void setOpacity(double opacity); // 0 to 1; only where it is translucent

    // The keyboard, on the user's explicit wish only; releasing gives it back to the window that had it, or
    // to the one that has been activated since.
    [[nodiscard]] virtual bool takeKeyboard() = 0; // whether it has come, as far as the desktop tells
    virtual void releaseKeyboard() = 0;

    // Around a drag that places the window again and again while the mouse button is held.
    virtual void beginMove() { }
    virtual void endMove() { }

    // Where on the screen a mouse event of the window has happened, also while the window moves below it.
    [[nodiscard]] virtual QPointF onScreen(const QMouseEvent &event) const;

    // Open at a place in window coordinates, as popups of the window. Menu and tool tip belong to the window
    // or to a widget in it.
    virtual void openMenu(QMenu &menu, const QPoint &position);
    virtual void showToolTip(QWidget &tip, const QRect &frame);

    // What keeps everybody from seeing the window: a blank screen, a locked session, other windows all over
    // it. Known only as far as the desktop tells.
    enum class Veil { Blank = 1, Lock = 2, Windows = 4 };
    Q_DECLARE_FLAGS(Veils, Veil)
    [[nodiscard]] bool isObservable() const { return !m_veils; }
    void setVeil(Veil veil, bool there);

Q_SIGNALS:
    void translucencyChanged();
    void barsChanged();
    void observableChanged();
    void closed(); // by the desktop, such as with its screen; placing it again brings it back

protected:
    [[nodiscard]] QWidget &window() const { return m_window; }

private:
    QWidget &m_window;
    Veils m_veils;
};

} // namespace nubble
