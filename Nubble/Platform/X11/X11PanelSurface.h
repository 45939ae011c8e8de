#pragma once

#include <memory>

#include "Platform/PanelSurface.h"
#include "Platform/X11/X11KeyboardFocus.h"
#include "Platform/X11/X11SelectionWatch.h"
#include "Platform/X11/X11Visibility.h"

namespace nubble {

class X11Connection;

// The panel as a window that no window manager touches: the only kind that lies flush over docks, above
// full-screen windows and on all desktops everywhere.
class X11PanelSurface : public PanelSurface {
    Q_OBJECT

public:
    X11PanelSurface(QWidget &window, std::shared_ptr<const X11Connection> x11);

    void place(const SurfacePlace &place) override;
    void orderFront() override;
    void orderOut() override;
    void setActiveRects(const QList<QRectF> &rects) override;
    [[nodiscard]] bool isTranslucent() const override { return m_compositor.isOwned(); }
    void setOutline(const QPainterPath &outline) override;
    void takeKeyboard() override;
    void releaseKeyboard() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] uint32_t nativeWindow() const; // 0 while there is none
    void applyAll();
    void applyPosition();
    void applyActiveRects();
    void applyOutline();

    std::shared_ptr<const X11Connection> m_x11;
    X11SelectionWatch m_compositor;
    X11KeyboardFocus m_keyboard;
    X11Visibility m_visibility;
    QRect m_frame;
    QList<QRectF> m_activeRects;
    QPainterPath m_outline;
};

} // namespace nubble
