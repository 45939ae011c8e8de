#pragma once

#include <QObject>

namespace nubble {

// Tells in the event loop that the system or the user wants this process to end. At most one exists, on the
// main thread.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

Q_SIGNALS:
    void received();
};

} // namespace nubble
