#include "Placement/Layout.h"

#include <algorithm>

namespace nubble {

namespace {

constexpr double ringAcross = 62.0 / 3.0;      // from the screen's edge to the ring's centre
constexpr double bodyBeforeRing = 154.0 / 3.0; // from the body's start to the ring's centre
constexpr double cellGap = 88.0 / 9.0;         // along, between the ring's cell and what follows it
constexpr double cardWidth = 3200.0 / 13.0;
constexpr double cardHeight = 460.0;

// The ring's cell is the ring with its percentage. A body that stands holds it lengthwise, a body that lies
// holds it across.
constexpr double ringAndGap = 1439.0 / 45.0; // the ring and what parts it from its percentage
constexpr double standingDepth = 124.0 / 3.0;
constexpr double lyingMargins = 46.0 / 3.0;                    // across, on both sides of the cell
constexpr double standingMargins = 551.0 / 9.0 + 167.0 / 15.0; // along, before and behind the cell
constexpr double lyingLength = 4426.0 / 45.0;                  // of a body that holds nothing else
constexpr double lyingQuenwickPitch = 322.0 / 9.0;             // a ring's width and the gap

constexpr double areaBeyondCell = 14; // along, where nothing else is near
constexpr double badgeReach = 20.7;   // along, from the ring's centre: the badge beside it at its largest

// A rectangle given by where it starts along the edge and away from it.
QRectF onEdge(NotchEdge edge, const QSizeF &window, double along, double length, double across, double depth)
{
    switch (edge) {
    case NotchEdge::Right:
        return {window.width() - across - depth, along, depth, length};
    case NotchEdge::Left:
        return {across, along, depth, length};
    case NotchEdge::Top:
        return {along, across, length, depth};
    case NotchEdge::Bottom:
        break;
    }
    return {along, window.height() - across - depth, length, depth};
}

QPointF onEdge(NotchEdge edge, const QSizeF &window, double along, double across)
{
    return onEdge(edge, window, along, 0, across, 0).topLeft();
}

} // namespace

Layout::Layout(double percentLineHeight, bool quenwickCellShown, int actionCount)
    : m_percentLineHeight(percentLineHeight), m_quenwickCellShown(quenwickCellShown),
      m_actionCount(actionCount)
{
}

double Layout::ringWithPercent() const
{
    return m_percentLineHeight + ringAndGap;
}

double Layout::bodyDepth(NotchEdge edge) const
{
    return isVertical(edge) ? standingDepth : ringWithPercent() + lyingMargins;
}

double Layout::quenwickPitch(NotchEdge edge) const
{
    if (!m_quenwickCellShown)
        return 0;
    return isVertical(edge) ? ringWithPercent() + cellGap : lyingQuenwickPitch;
}

double Layout::buttonsLength() const
{
    return m_actionCount == 0 ? 0 : m_actionCount * actionButton + (m_actionCount - 1) * actionGap;
}

double Layout::actionsLength() const
{
    return m_actionCount == 0 ? 0 : buttonsLength() + cellGap;
}

double Layout::bodyLength(NotchEdge edge) const
{
    const double base = isVertical(edge) ? ringWithPercent() + standingMargins : lyingLength;
    return base + quenwickPitch(edge) + actionsLength();
}

double Layout::extentBeyondRing(NotchEdge edge) const
{
    return std::max(bodyLength(edge) - bodyBeforeRing, bodyBeforeRing);
}

double Layout::cardAcross(NotchEdge edge) const
{
    return isVertical(edge) ? cardWidth : cardHeight;
}

double Layout::cardAlong(NotchEdge edge) const
{
    return isVertical(edge) ? cardHeight : cardWidth;
}

double Layout::cardAreaDepth(NotchEdge edge) const
{
    return cardAcross(edge) + 2 * cardPadding + tailSpace + cardGap;
}

QSizeF Layout::windowSize(NotchEdge edge) const
{
    const double alongSize = std::max(cardAlong(edge) + 2 * quenwickPitch(edge), 2 * extentBeyondRing(edge));
    const double acrossSize = cardAreaDepth(edge) + bodyDepth(edge);
    return isVertical(edge) ? QSizeF(acrossSize, alongSize) : QSizeF(alongSize, acrossSize);
}

double Layout::along(NotchEdge edge, const QSizeF &size)
{
    return isVertical(edge) ? size.height() : size.width();
}

QPointF Layout::ringCenterMovedAlong(NotchEdge edge, double distance) const
{
    const QSizeF window = windowSize(edge);
    return onEdge(edge, window, along(edge, window) / 2 + distance, ringAcross);
}

QPointF Layout::ringCenter(NotchEdge edge) const
{
    return ringCenterMovedAlong(edge, 0);
}

QRectF Layout::bodyRect(NotchEdge edge) const
{
    const QSizeF window = windowSize(edge);
    return onEdge(
        edge, window, along(edge, window) / 2 - bodyBeforeRing, bodyLength(edge), 0, bodyDepth(edge));
}

QRectF Layout::cardArea(NotchEdge edge) const
{
    const QSizeF window = windowSize(edge);
    return onEdge(edge, window, 0, along(edge, window), bodyDepth(edge), cardAreaDepth(edge));
}

QPointF Layout::quenwickCenterInWindow(NotchEdge edge) const
{
    return ringCenterMovedAlong(edge, quenwickPitch(edge));
}

QPointF Layout::actionsCenterInWindow(NotchEdge edge) const
{
    return ringCenterMovedAlong(edge, actionsStart(edge) + buttonsLength() / 2);
}

// From a round cell's centre along to the end of what it shows.
double Layout::shownBehindCenter(NotchEdge edge) const
{
    return ringDiameter / 2 + (isVertical(edge) ? percentGap + m_percentLineHeight : 0);
}

double Layout::actionsStart(NotchEdge edge) const
{
    const double cellEnd = isVertical(edge) ? ringWithPercent() / 2 : ringDiameter / 2;
    return quenwickPitch(edge) + cellEnd + cellGap;
}

// Of the last round cell, whose centre is that far from the ring's.
double Layout::areaEnd(NotchEdge edge, double center) const
{
    return m_actionCount > 0 ? actionsStart(edge) - actionGap / 2
                             : center + shownBehindCenter(edge) + areaBeyondCell;
}

// Both from the ring's centre.
QRectF Layout::areaBetween(NotchEdge edge, double start, double end) const
{
    const QSizeF window = windowSize(edge);
    return onEdge(edge, window, along(edge, window) / 2 + start, end - start, 0, bodyDepth(edge));
}

QRectF Layout::ringArea(NotchEdge edge) const
{
    const double end = m_quenwickCellShown ? quenwickAreaStart(edge) : areaEnd(edge, 0);
    return areaBetween(edge, -ringDiameter / 2 - areaBeyondCell, end);
}

// Halfway from what the ring's cell shows, from the ring's centre.
double Layout::quenwickAreaStart(NotchEdge edge) const
{
    return std::max((shownBehindCenter(edge) + quenwickPitch(edge) - ringDiameter / 2) / 2, badgeReach);
}

QRectF Layout::quenwickArea(NotchEdge edge) const
{
    return areaBetween(edge, quenwickAreaStart(edge), areaEnd(edge, quenwickPitch(edge)));
}

QRectF Layout::actionArea(NotchEdge edge, int position) const
{
    constexpr double pitch = actionButton + actionGap;
    const double start = actionsStart(edge) - actionGap / 2 + position * pitch;
    return areaBetween(edge, start, start + pitch);
}

double Layout::offsetLimit(NotchEdge edge, double screenLength) const
{
    return std::max(screenLength / 2 - extentBeyondRing(edge), 0.0);
}

QRectF Layout::windowFrame(NotchEdge edge, double offset, const QRectF &screen) const
{
    const QPointF ringOnScreen =
        screen.topLeft() + onEdge(edge, screen.size(), along(edge, screen.size()) / 2 + offset, ringAcross);
    return {ringOnScreen - ringCenter(edge), windowSize(edge)};
}

} // namespace nubble
