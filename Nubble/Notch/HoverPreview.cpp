#include "Notch/HoverPreview.h"

#include <chrono>

#include "Notch/PanelState.h"
#include "Platform/MainThread.h"

using namespace std::chrono_literals;

namespace nubble {

namespace {

constexpr auto comesAfter = 120ms; // not where the pointer only passes
constexpr auto goneAfter = 150ms;

} // namespace

HoverPreview::HoverPreview(PanelState &state, std::function<bool()> isOnTheWay, QObject *parent)
    : QObject(parent), m_state(state), m_isOnTheWay(std::move(isOnTheWay))
{
    m_opening.setSingleShot(true);
    m_opening.callOnTimeout(this, &HoverPreview::open);
    m_leaving.setSingleShot(true);
    m_leaving.callOnTimeout(this, &HoverPreview::collapsePreview);
}

void HoverPreview::setRingHovered(bool hovered)
{
    assertMainThread("Nubble/Notch/HoverPreview");
    m_ringHovered = hovered;
    if (hovered)
        m_opening.start(comesAfter);
    else
        m_opening.stop();
    scheduleCollapse();
}

void HoverPreview::open()
{
    if (m_state.mode() == PanelMode::collapsed())
        m_state.setMode(PanelMode::usage());
}

void HoverPreview::cancel()
{
    m_opening.stop();
}

void HoverPreview::setCardHovered(bool hovered)
{
    assertMainThread("Nubble/Notch/HoverPreview");
    m_cardHovered = hovered;
    scheduleCollapse();
}

void HoverPreview::closeEveryCardWhenLeft()
{
    m_closesEveryCard = true;
}

void HoverPreview::scheduleCollapse()
{
    constexpr int looks = 5;
    m_patience = looks;
    m_leaving.start(goneAfter);
    if (m_closesEveryCard)
        QTimer::singleShot(1500ms, this, &HoverPreview::collapseUnlessHovered);
}

void HoverPreview::collapsePreview()
{
    if (m_state.mode() != PanelMode::usage() || m_ringHovered || m_cardHovered)
        return;
    if (m_patience-- > 0 && m_isOnTheWay())
        m_leaving.start(goneAfter);
    else
        m_state.collapse();
}

void HoverPreview::collapseUnlessHovered()
{
    if (!m_ringHovered && !m_cardHovered)
        m_state.collapse();
}

} // namespace nubble
