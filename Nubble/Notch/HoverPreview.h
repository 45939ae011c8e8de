#pragma once

#include <QObject>

namespace nubble {

class PanelState;

// The usage card that comes with the pointer over the status ring and goes soon after the pointer has left
// both ring and card. Cards that a click opened are none of its business, unless it is asked to close them,
// too. Main thread only.
class HoverPreview : public QObject {
    Q_OBJECT

public:
    explicit HoverPreview(PanelState &state, QObject *parent = nullptr);

    void setRingHovered(bool hovered);
    void setCardHovered(bool hovered);
    void closeEveryCardWhenLeft(); // from now on, after a longer while

private:
    void scheduleCollapse();
    void collapseUnlessHovered();

    PanelState &m_state;
    bool m_ringHovered = false;
    bool m_cardHovered = false;
    bool m_closesEveryCard = false;
};

} // namespace nubble
