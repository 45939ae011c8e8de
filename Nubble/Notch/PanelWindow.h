#pragma once

#include <QObject>

#include <memory>
#include <optional>

#include "Notch/NotchView.h"

namespace nubble {

class PanelSurface;

// The panel's window: keeps the view on the screen's edge, its shape and its click-through areas in step with
// placement, mode and screen. Main thread only. Without a screen it does nothing until there is one.
class PanelWindow : public QObject {
    Q_OBJECT

public:
    using SurfaceFactory = std::function<std::unique_ptr<PanelSurface>(QWidget &)>;

    PanelWindow(const NotchServices &services, const SurfaceFactory &makeSurface, QObject *parent = nullptr);
    ~PanelWindow() override;

    struct Anchor {
        QRectF body; // in screen coordinates
        NotchEdge edge;
    };

    void applyPlacement();
    [[nodiscard]] std::optional<Anchor> bodyOnScreen() const;

    NotchView &view() { return *m_view; }
    void openForKeyboard(PanelMode mode); // the card, with the keyboard in it

private:
    void updateActiveRects(PanelMode mode);
    void updateTranslucency();
    void followMode(PanelMode mode);

    NotchServices m_services;
    std::unique_ptr<NotchView> m_view;
    std::unique_ptr<PanelSurface> m_surface;
    std::optional<PanelGeometry> m_geometry;
};

} // namespace nubble
