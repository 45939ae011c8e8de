#pragma once

#include <QWidget>

#include "Notch/HoverPreview.h"
#include "Notch/PanelState.h"
#include "Placement/PanelGeometry.h"

namespace nubble {

class ActionsCell;
class CardHost;
class ClaudeCell;
class CompanionCell;
class DesktopPreferences;
class Layout;
class MainScreen;
class NotchAction;
class NotchPlacement;
struct Card;

// What the panel is placed and drawn by. Everything outlives the panel.
struct NotchContext {
    PanelState &state;
    NotchPlacement &placement;
    const Layout &layout;
    const MainScreen &mainScreen;
    const DesktopPreferences &preferences;
};

// What the panel offers. The actions outlive it.
struct NotchContents {
    QList<Card> cards;
    QList<NotchAction *> actions; // in the order of their buttons
    NotchAction *companion =
        nullptr; // with a cell of its own beside the ring; none where the layout has none
};

// The panel's contents: the body at the screen's edge with its cells, and the open card. Main thread only.
class NotchView : public QWidget {
    Q_OBJECT

public:
    NotchView(const NotchContext &context, const NotchContents &contents, QWidget *parent = nullptr);

    // Opens a card and has it brought up to date, or closes it when it is the open one. Does nothing for a
    // mode without a card.
    void open(PanelMode mode);

    [[nodiscard]] ClaudeCell &ring() { return *m_claude; }

    void setGeometryOnScreen(const PanelGeometry &geometry);
    void setTranslucent(bool translucent); // whether what is below shines through
    void setObservable(bool observable);   // whether anybody can see it
    void endPreview();                     // closes a card that only the pointer has opened
    void closeCardsWhenLeft();             // by the pointer: where presses elsewhere cannot be noticed
    void focusCard();                      // the keyboard goes to the open card's first control

    [[nodiscard]] QPainterPath outline() const; // of all that is shown, in window coordinates
    [[nodiscard]] QRect shownOnScreen() const;  // what it lies in, with the card's shadow

Q_SIGNALS:
    void outlineChanged();
    void keyboardWanted();               // the user has clicked on the card itself
    void menuRequested(QPoint position); // in window coordinates
    void enlargeRequested(int steps);    // below 0 it is to become smaller

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void placeCells();
    [[nodiscard]] bool isPointerBetweenRingAndCard() const;
    void followState();
    void followMotion();

    NotchContext m_context;
    HoverPreview m_hover;
    PanelGeometry m_geometry;
    bool m_translucent = true;
    bool m_observable = true;
    int m_turnedBy = 0; // the wheel, since the last whole step; eighths of a degree
    CardHost *m_cards;
    ClaudeCell *m_claude;
    CompanionCell *m_companion; // may be none
    ActionsCell *m_actions;
};

} // namespace nubble
