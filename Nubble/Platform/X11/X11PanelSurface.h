#pragma once

#include <memory>

#include "Platform/PanelSurface.h"
#include "Platform/X11/X11SelectionWatch.h"
#include "Platform/X11/X11ShellBars.h"
#include "Platform/X11/X11Visibility.h"

namespace nubble {

class X11Connection;
class X11KeyboardFocus;

// The panel as a window that no window manager touches: the only kind that lies flush over docks, above
// full-screen windows and on all desktops everywhere.
class X11PanelSurface : public PanelSurface {
    Q_OBJECT

public:
    // The keyboard is shared with whoever activates windows.
    X11PanelSurface(
        QWidget &window, std::shared_ptr<const X11Connection> x11,
        std::shared_ptr<X11KeyboardFocus> keyboard);

    void place(const SurfacePlace &place) override;
    void orderFront() override;
    void orderOut() override;
    [[nodiscard]] bool passesClicksThrough() const override;
    [[nodiscard]] bool isTranslucent() const override { return m_compositor.isOwned(); }
    [[nodiscard]] QMargins barsAbove() const override { return m_bars.reach(); }
    void setOutline(const QPainterPath &outline) override;
    [[nodiscard]] bool takeKeyboard() override;
    void releaseKeyboard() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] uint32_t nativeWindow() const; // 0 while there is none
    void applyAll();
    void applyPosition();
    void applyOutline();

    std::shared_ptr<const X11Connection> m_x11;
    X11SelectionWatch m_compositor;
    X11ShellBars m_bars;
    std::shared_ptr<X11KeyboardFocus> m_keyboard;
    X11Visibility m_visibility;
    QRect m_frame;
    QPainterPath m_outline;
};

} // namespace nubble
