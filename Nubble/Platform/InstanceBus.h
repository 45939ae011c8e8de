#pragma once

#include <QString>

class QObject;

namespace nubble {

// This program's name among the processes of the user: at most one process owns it, and others reach that
// one's control object (see InstanceClient). When the bus has died and is there again the name is taken
// again. Main thread only.
class InstanceBus {
public:
    InstanceBus() = default;
    Q_DISABLE_COPY_MOVE(InstanceBus)
    virtual ~InstanceBus() = default;

    [[nodiscard]] virtual bool isConnected() const = 0;

    // Takes the name and offers `exported` with its D-Bus adaptors, which must be there by now. False when
    // another process owns the name; true where there is no bus.
    [[nodiscard]] virtual bool claim(QObject *exported) = 0;

    // Gives the name up at once, so that a successor finds it free.
    virtual void release() = 0;
};

} // namespace nubble
