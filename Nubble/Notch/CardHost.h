#pragma once

#include <QList>
#include <QObject>
#include <QPainterPath>

#include "Notch/PanelState.h"
#include "Placement/PanelGeometry.h"
#include "Widgets/Card.h"

class QWidget;

namespace nubble {

class DesktopPreferences;
class TooltipShell;

// Shows the open card beside the body, in the panel's window. Cards are made when they open and go when they
// close. A mode without a card shows none. Main thread only.
class CardHost : public QObject {
    Q_OBJECT

public:
    CardHost(QWidget *view, QList<Card> cards, const DesktopPreferences &preferences);

    [[nodiscard]] const Card *cardOf(PanelMode mode) const; // null: there is none

    void show(PanelMode mode);
    void setGeometry(const PanelGeometry &geometry, const QPointF &ring);
    void pointTo(const QPointF &ring); // the open card's tail; in the view's coordinates
    void setTranslucent(bool translucent);

    [[nodiscard]] QPainterPath outline() const; // of the open card, in the view's coordinates
    void focusFirstControl();                   // as Tab goes

Q_SIGNALS:
    void closeRequested(); // by the card itself
    void outlineChanged();
    void hoveredChanged(bool hovered);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void open();
    void close();
    void layOut();
    [[nodiscard]] bool animates() const;

    QWidget *m_view;
    const DesktopPreferences &m_preferences;
    QList<Card> m_cards;
    PanelGeometry m_geometry;
    QPointF m_ring; // its centre
    PanelMode m_mode;
    TooltipShell *m_shell = nullptr;
    bool m_translucent = true;
};

} // namespace nubble
