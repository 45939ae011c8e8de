#pragma once

#include <QObject>

namespace nubble {

// Tells of SIGTERM and SIGINT in the event loop. At most one exists, on the main thread.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

Q_SIGNALS:
    void received();
};

} // namespace nubble
