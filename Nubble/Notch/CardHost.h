#pragma once

#include <QHash>
#include <QObject>
#include <QPainterPath>

#include <functional>

#include "Notch/PanelState.h"
#include "Placement/PanelGeometry.h"

class QWidget;

namespace nubble {

class DesktopPreferences;
class TooltipShell;

// Shows the open card beside the body, in the panel's window. Cards are made when they open and go when they
// close. A mode without a card shows none. Main thread only.
class CardHost : public QObject {
    Q_OBJECT

public:
    using CardFactory = std::function<QWidget *()>;

    CardHost(QWidget *view, const DesktopPreferences &preferences);

    void setCard(PanelMode::Card card, const CardFactory &make);
    [[nodiscard]] bool hasCard(PanelMode::Card card) const { return m_factories.contains(card); }

    void show(PanelMode mode);
    void setGeometry(const PanelGeometry &geometry);
    void setTranslucent(bool translucent);

    [[nodiscard]] QPainterPath outline() const; // of the open card, in the view's coordinates
    void focusFirstControl();

Q_SIGNALS:
    void outlineChanged();
    void hoveredChanged(bool hovered);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void open(PanelMode::Card card);
    void close();
    void layOut();
    [[nodiscard]] bool animates() const;
    [[nodiscard]] QPoint towardsBody() const;

    QWidget *m_view;
    const DesktopPreferences &m_preferences;
    QHash<PanelMode::Card, CardFactory> m_factories;
    PanelGeometry m_geometry;
    PanelMode::Card m_card = PanelMode::Card::None;
    TooltipShell *m_shell = nullptr;
    bool m_translucent = true;
};

} // namespace nubble
