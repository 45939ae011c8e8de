#pragma once

#include <QDBusConnection>

#include "Platform/InstanceBus.h"

namespace nubble {

// The name on the D-Bus session bus.
class SessionBus : public InstanceBus {
public:
    // Not connected where no bus has been set up: libdbus would try to start one, which takes its time.
    [[nodiscard]] static QDBusConnection connection();

    explicit SessionBus(QString serviceName);
    ~SessionBus() override;

    [[nodiscard]] bool isConnected() const override { return m_bus.isConnected(); }
    [[nodiscard]] bool claim(QObject *exported) override;
    void release() override;
    [[nodiscard]] BusAnswer call(
        const QString &method, const QVariantList &arguments,
        std::chrono::milliseconds timeout) const override;

private:
    void giveUp();

    QString m_serviceName;
    QDBusConnection m_bus;
    bool m_owner = false;
};

} // namespace nubble
