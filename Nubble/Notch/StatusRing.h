#pragma once

#include <QPointF>

#include <array>
#include <optional>

class QPainter;
class QRectF;

namespace nubble {

// The drawings of the status ring, 26 pixels across, around `center`.

// At rest: the fraction of the plan that is used (0 to 1, none draws the track alone), with the opacity
// `strength`. `waiting`: something waits for the user.
void drawStatusRing(
    QPainter &painter, const QPointF &center, std::optional<double> fraction, double strength, bool waiting);

// After something has finished: a check mark, of which the part `drawn` (0 to 1) is there.
void drawCompletion(QPainter &painter, const QPointF &center, double drawn);

// While something works: a quarter of the circle, `turn` (0 to 1) of the way round. `waiting`: something else
// waits for the user.
void drawActivityArc(QPainter &painter, const QPointF &center, double turn, bool waiting);

// All that looks different when the arc has gone on from one turn to another: the places of its two ends.
[[nodiscard]] std::array<QRectF, 2> changedByTurning(const QPointF &center, double from, double to);

// Whether so much of the plan is used that ring and number should catch the eye.
[[nodiscard]] bool isScarce(int percent);

// Something waits for the user: a dot outside the ring, all of which stays to be seen. A size of 1 is as it
// is at rest.
void drawWaitingBadge(QPainter &painter, const QPointF &center, double size);

} // namespace nubble
