#pragma once

#include <QString>
#include <QVariantList>

#include <chrono>

class QObject;

namespace nubble {

// What became of a call.
struct BusAnswer {
    enum class Kind {
        Reply,
        NotOwned, // there is nobody to call
        Error,    // the owner says why not
        Silence,  // it has not answered in time, or has gone meanwhile
    };

    Kind kind = Kind::NotOwned;
    QVariantList values; // of the reply
    QString error;
};

// This program's name among the processes of the user: at most one process owns it, and others reach that
// one's control object. Where there is no bus nobody owns the name, which is noticed at once. Main thread
// only.
class InstanceBus {
public:
    InstanceBus() = default;
    Q_DISABLE_COPY_MOVE(InstanceBus)
    virtual ~InstanceBus() = default;

    [[nodiscard]] virtual bool isConnected() const = 0;

    // Takes the name and offers `exported` with its D-Bus adaptors, which must be there by now. False when
    // another process owns the name.
    [[nodiscard]] virtual bool claim(QObject *exported) = 0;

    // Gives the name up at once, so that a successor finds it free.
    virtual void release() = 0;

    // Calls a method of the owner's control object and waits for its answer, for as long as that.
    [[nodiscard]] virtual BusAnswer call(
        const QString &method, const QVariantList &arguments, std::chrono::milliseconds timeout) const = 0;
};

} // namespace nubble
