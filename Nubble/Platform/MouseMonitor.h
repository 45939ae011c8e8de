#pragma once

#include <QObject>

namespace nubble {

// Tells of mouse buttons pressed in other applications' windows or on the desktop, whoever gets the event.
// Watches for as long as it exists. Main thread only.
class MouseMonitor : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

Q_SIGNALS:
    void pressedElsewhere(); // left or right button, outside every window of this program
};

} // namespace nubble
