#pragma once

#include <QObject>

namespace nubble {

class PanelState;

// The usage card that comes with the pointer over the status ring and goes soon after the pointer has left
// both ring and card. Cards that a click opened are none of its business. Main thread only.
class HoverPreview : public QObject {
    Q_OBJECT

public:
    explicit HoverPreview(PanelState &state, QObject *parent = nullptr);

    void setRingHovered(bool hovered);
    void setCardHovered(bool hovered);

private:
    void scheduleCollapse();

    PanelState &m_state;
    bool m_ringHovered = false;
    bool m_cardHovered = false;
};

} // namespace nubble
