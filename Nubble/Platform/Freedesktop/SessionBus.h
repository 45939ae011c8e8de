#pragma once

#include <QDBusConnection>
#include <QString>
#include <QVariantList>

#include <chrono>

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

// This program's name on the session bus: at most one process owns it, and others reach that one's control
// object. A machine without a session bus is noticed at once, and then nobody owns the name. Main thread
// only.
class SessionBus {
public:
    // Not connected where no bus has been set up: libdbus would try to start one, which takes its time.
    [[nodiscard]] static QDBusConnection connection();

    explicit SessionBus(QString serviceName);
    SessionBus(const SessionBus &) = delete;
    SessionBus &operator=(const SessionBus &) = delete;
    ~SessionBus();

    [[nodiscard]] bool isConnected() const { return m_bus.isConnected(); }

    // Takes the name and offers `exported` with its adaptors, which must be there by now. False when another
    // process owns the name.
    [[nodiscard]] bool claim(QObject *exported);

    // Gives the name up at once, so that a successor finds it free.
    void release();

    // Calls a method of the owner's control object and waits for its answer, for as long as that.
    [[nodiscard]] BusAnswer call(
        const QString &method, const QVariantList &arguments, std::chrono::milliseconds timeout) const;

private:
    QString m_serviceName;
    QDBusConnection m_bus;
    bool m_owner = false;
};

} // namespace nubble
