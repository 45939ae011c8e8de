#include "Notch/HoverPreview.h"

#include <QTimer>

#include <chrono>

#include "Notch/PanelState.h"

using namespace std::chrono_literals;

namespace nubble {

HoverPreview::HoverPreview(PanelState &state, QObject *parent) : QObject(parent), m_state(state) { }

void HoverPreview::setRingHovered(bool hovered)
{
    m_ringHovered = hovered;
    if (hovered && m_state.mode() == PanelMode::collapsed())
        m_state.setMode(PanelMode::usage());
    scheduleCollapse();
}

void HoverPreview::setCardHovered(bool hovered)
{
    m_cardHovered = hovered;
    scheduleCollapse();
}

void HoverPreview::closeEveryCardWhenLeft()
{
    m_closesEveryCard = true;
}

void HoverPreview::scheduleCollapse()
{
    // Long enough for the pointer to cross from the ring to the card.
    QTimer::singleShot(150ms, this, [this] {
        if (m_state.mode() == PanelMode::usage())
            collapseUnlessHovered();
    });
    if (m_closesEveryCard)
        QTimer::singleShot(1500ms, this, &HoverPreview::collapseUnlessHovered);
}

void HoverPreview::collapseUnlessHovered()
{
    if (!m_ringHovered && !m_cardHovered)
        m_state.collapse();
}

} // namespace nubble
