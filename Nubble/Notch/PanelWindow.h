#pragma once

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

#include "Notch/DragGesture.h"
#include "Notch/EdgeTransition.h"
#include "Notch/NotchView.h"
#include "Placement/WindowPlacement.h"

class QMenu;

namespace nubble {

class PanelSurface;
class ToolTips;

// The panel's window: keeps the view on the screen's edge, its shape and its click-through areas in step with
// placement, mode and screen, and follows drags. Main thread only. Without a screen it does nothing until
// there is one.
class PanelWindow : public QObject {
    Q_OBJECT

public:
    using SurfaceFactory = std::function<std::unique_ptr<PanelSurface>(QWidget &)>;

    PanelWindow(
        const NotchContext &context, const NotchContents &contents, const SurfaceFactory &makeSurface,
        QObject *parent = nullptr);
    ~PanelWindow() override;

    void applyPlacement();
    [[nodiscard]] std::optional<WindowAnchor> bodyOnScreen() const;

    NotchView &view() { return *m_view; }
    [[nodiscard]] bool openForKeyboard(PanelMode mode); // the card, with the keyboard in it if that comes
    [[nodiscard]] bool isTranslucent() const;

    // A child of the view's, beside the body when that is what was pressed, else there; in window
    // coordinates.
    void openMenu(QMenu &menu, const QPoint &position);

Q_SIGNALS:
    void translucencyChanged();

private:
    void followSurface();
    void followDrags();
    void followTransition();
    [[nodiscard]] bool canFade() const;
    void showPlacement();
    void layOut(const PanelGeometry &geometry);
    void showGeometry();
    void fit();
    void updateTranslucency();
    void followMode(PanelMode mode);

    NotchContext m_context;
    std::unique_ptr<NotchView> m_view;
    std::unique_ptr<PanelSurface> m_surface;
    ToolTips *m_toolTips; // the view's
    DragGesture m_drag;
    EdgeTransition m_turn;
    std::optional<PanelGeometry> m_whole;    // with room for the tallest card
    std::optional<PanelGeometry> m_geometry; // the part of it that the window covers
    QTimer m_shrinking;
};

} // namespace nubble
