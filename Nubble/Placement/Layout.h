#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include "Placement/NotchEdge.h"

namespace nubble {

// The panel's geometry: pure functions of the edge and of three facts that are fixed for a run. Lengths are
// device-independent pixels. "Along" is the direction parallel to the edge, "across" the other one. Window
// coordinates start at the window's top left, screen coordinates at the screen's, y growing downwards. Any
// thread.
class Layout {
public:
    // `percentLineHeight` is the height of one line of the percentage below the status ring.
    Layout(double percentLineHeight, bool quenwickCellShown, int actionCount);

    [[nodiscard]] double bodyDepth(NotchEdge edge) const;  // across extent of the collapsed body
    [[nodiscard]] double bodyLength(NotchEdge edge) const; // along extent of the collapsed body
    [[nodiscard]] double quenwickPitch(
        NotchEdge edge) const; // along, from the ring's centre to the companion cell's
    [[nodiscard]] int actionCount() const { return m_actionCount; }
    [[nodiscard]] double actionsLength() const; // along extent of the action buttons
    [[nodiscard]] double cardAcross(NotchEdge edge) const;
    [[nodiscard]] double cardAlong(NotchEdge edge) const;
    [[nodiscard]] QSizeF windowSize(NotchEdge edge) const;

    // In window coordinates.
    [[nodiscard]] QPointF ringCenter(NotchEdge edge) const;
    [[nodiscard]] QRectF bodyRect(NotchEdge edge) const;
    [[nodiscard]] QRectF cardArea(NotchEdge edge) const; // beside the body; cards stand in it
    [[nodiscard]] QPointF quenwickCenterInWindow(NotchEdge edge) const;
    [[nodiscard]] QPointF actionsCenterInWindow(NotchEdge edge) const;

    // What each cell of the body may be touched in, which is more than what it shows: all of the body's
    // depth, from the screen's edge on, and along it as far as halfway to its neighbours.
    [[nodiscard]] QRectF ringArea(NotchEdge edge) const;
    [[nodiscard]] QRectF quenwickArea(NotchEdge edge) const;
    [[nodiscard]] QRectF actionArea(NotchEdge edge, int position) const;

    // How far the panel's centre may go from the middle of an edge of that length, in both directions.
    [[nodiscard]] double offsetLimit(NotchEdge edge, double screenLength) const;

    // Where the window goes: it touches the screen's edge, with the ring's centre `offset` from the edge's
    // middle.
    [[nodiscard]] QRectF windowFrame(NotchEdge edge, double offset, const QRectF &screen) const;

    [[nodiscard]] static double along(NotchEdge edge, const QSizeF &size);

    static constexpr double cardGap = 448.0 / 39.0;            // between a standing body and the padded card
    static constexpr double cardStart = 124.0 / 3.0 + cardGap; // of it from the screen's edge, on every edge
    static constexpr double cardPadding = 160.0 / 13.0;        // around an open card, for its shadow
    static constexpr double tailSpace = 80.0 / 13.0;   // more of it on the body's side, for the card's tail
    static constexpr double tallestStillCard = 318;    // of those that do not scroll, with short texts
    static constexpr double actionButton = 56.0 / 3.0; // side of an action button
    static constexpr double actionGap = 44.0 / 9.0;    // between two of them
    static constexpr double ringDiameter = 26.0;
    static constexpr double percentGap = 3.5; // between the ring and its percentage

private:
    [[nodiscard]] double ringWithPercent() const;
    [[nodiscard]] double extentBeyondRing(NotchEdge edge) const;
    [[nodiscard]] double cardAreaDepth(NotchEdge edge) const;
    [[nodiscard]] double buttonsLength() const;
    [[nodiscard]] double shownBehindCenter(NotchEdge edge) const;
    [[nodiscard]] double actionsStart(NotchEdge edge) const;
    [[nodiscard]] double areaEnd(NotchEdge edge, double center) const;
    [[nodiscard]] double quenwickAreaStart(NotchEdge edge) const;
    [[nodiscard]] QRectF areaBetween(NotchEdge edge, double start, double end) const;
    [[nodiscard]] QPointF ringCenterMovedAlong(NotchEdge edge, double distance) const;

    double m_percentLineHeight;
    bool m_quenwickCellShown;
    int m_actionCount;
};

} // namespace nubble
