#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

namespace nubble {

class PanelState;

// The usage card that comes when the pointer rests on the status ring and goes soon after the pointer has
// left both ring and card, a little later while it is on its way from one to the other. Cards that a click
// opened are none of its business, unless it is asked to close them, too. Main thread only.
class HoverPreview : public QObject {
    Q_OBJECT

public:
    // `isOnTheWay` says whether the pointer, which is over neither, may be going to one of them.
    explicit HoverPreview(
        PanelState &state, std::function<bool()> isOnTheWay = [] { return false; },
        QObject *parent = nullptr);

    void setRingHovered(bool hovered);
    void setCardHovered(bool hovered);
    void closeEveryCardWhenLeft(); // from now on, after a longer while
    void cancel();                 // it does not come, unless the pointer does anew

private:
    void open();
    void scheduleCollapse();
    void collapsePreview();
    void collapseUnlessHovered();

    PanelState &m_state;
    std::function<bool()> m_isOnTheWay;
    bool m_ringHovered = false;
    bool m_cardHovered = false;
    bool m_closesEveryCard = false;
    QTimer m_opening;
    QTimer m_leaving;
    int m_patience = 0; // in further looks at a pointer on its way
};

} // namespace nubble
