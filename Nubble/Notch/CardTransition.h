#pragma once

#include <QObject>
#include <QPoint>

#include <chrono>

class QWidget;

namespace nubble {

// Fades a card in or out while it slides eight pixels from or to the body.
namespace CardTransition {

inline constexpr std::chrono::milliseconds duration{160};

enum class Direction { In, Out };

// `towardsBody` is a unit step. Goes on wherever the card is moved or resized meanwhile; a later transition
// of the same card takes its place. A card that goes is hidden and deleted afterwards.
void run(QWidget *card, const QPoint &towardsBody, Direction direction);

} // namespace CardTransition

} // namespace nubble
