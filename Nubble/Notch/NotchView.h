#pragma once

#include <QWidget>

#include "Notch/HoverPreview.h"
#include "Notch/PanelState.h"
#include "Placement/PanelGeometry.h"
#include "Shell/Addon.h"

namespace nubble {

class ActionsCell;
class CardHost;
class ClaudeCell;
class Clock;
class DesktopPreferences;
class DragGesture;
class Layout;
class MainScreen;
class NotchPlacement;
class NotificationCenter;
class PlanUsageMonitor;
class ProcessActivator;
class SessionMonitor;

// What the panel shows and acts on. Everything outlives the view.
struct NotchServices {
    SessionMonitor &sessionMonitor;
    PlanUsageMonitor &planUsage;
    PanelState &panelState;
    NotchPlacement &placement;
    const Layout &layout;
    const MainScreen &mainScreen;
    const Clock &clock;
    const DesktopPreferences &preferences;
    ProcessActivator &activator;
    NotificationCenter &notifications;
    QList<Addon> actions; // of the active add-ons, in their order
};

// The panel's contents: the body at the screen's edge with its cells, and the open card. Main thread only.
class NotchView : public QWidget {
    Q_OBJECT

public:
    explicit NotchView(const NotchServices &services, QWidget *parent = nullptr);

    // Opens a card, or closes it when it is the open one. Brings up to date what the card shows.
    void open(PanelMode mode);

    void setGeometryOnScreen(const PanelGeometry &geometry);
    void setTranslucent(bool translucent); // whether what is below shines through
    void endPreview();                     // closes a card that only the pointer has opened
    void focusCard();                      // the keyboard goes to the open card's first control

    [[nodiscard]] QPainterPath outline() const; // of all that is shown, in window coordinates

Q_SIGNALS:
    void outlineChanged();
    void keyboardWanted(); // the user has clicked on the card itself
    void menuRequested(QPoint screenPosition);

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void makeCards();
    void makeCells();
    void followDrags();
    void updateActivity();
    void updateFraction();
    void runAction(Addon addon);

    NotchServices m_services;
    HoverPreview m_hover;
    PanelGeometry m_geometry;
    bool m_translucent = true;
    CardHost *m_cards;
    ClaudeCell *m_claude;
    ActionsCell *m_actions;
    DragGesture *m_drag;
};

} // namespace nubble
