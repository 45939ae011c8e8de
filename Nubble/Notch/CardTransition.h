#pragma once

#include <QObject>
#include <QPoint>

class QWidget;

namespace nubble {

// Fades a card in or out while it slides eight pixels from or to the body.
namespace CardTransition {

enum class Direction { In, Out };

// `towardsBody` is a unit step. A card that goes is hidden and deleted afterwards.
void run(QWidget *card, const QPoint &towardsBody, Direction direction);

// Ends a transition that brings the card in: it is opaque at once.
void cutShort(QWidget *card);

} // namespace CardTransition

} // namespace nubble
