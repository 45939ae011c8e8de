#pragma once

#include <functional>

#include "Notch/PanelState.h"

class QWidget;

namespace nubble {

// What an open card is given by the panel.
struct CardRoom {
    int height = 0;              // that the screen leaves to it, device-independent pixels
    std::function<void()> close; // closes the card
};

// A card as the panel knows it. Both functions are called on the main thread, for as long as the panel lives.
struct NotchCard {
    PanelMode mode;
    std::function<QWidget *(const CardRoom &room)> makeContent; // the panel's own from then on
    std::function<void()> refresh;                              // what it shows is to be brought up to date
};

} // namespace nubble
