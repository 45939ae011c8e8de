#pragma once

#include <QLatin1String>

#include <functional>

class QWidget;

namespace nubble {

// What an open card is given by the panel.
struct CardRoom {
    QWidget *panel = nullptr;    // that the content is made in
    int height = 0;              // that the screen leaves to it, device-independent pixels
    std::function<void()> close; // closes the card
};

// A card that the panel can open, as a plain value. Both functions are called on the main thread, for as long
// as the panel lives.
struct Card {
    QLatin1String name;
    std::function<QWidget *(const CardRoom &room)> makeContent; // the panel's own from then on
    std::function<void()>
        refresh; // of what it shows, when it is opened, but not by mere pointing; may be none
};

} // namespace nubble
