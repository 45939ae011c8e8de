#pragma once

#include <QObject>

namespace nubble {

// Tells that the user has turned to something else: a mouse button pressed in other applications' windows or
// on the desktop, whoever gets the event, or, where a desktop tells nobody of such presses, the keyboard gone
// to another window. Watches for as long as it exists. Main thread only.
class MouseMonitor : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    [[nodiscard]] virtual bool canWatch() const { return false; } // else nothing is ever told

Q_SIGNALS:
    void pressedElsewhere(); // left or right button, outside every window of this program
};

} // namespace nubble
