#pragma once

#include <QDBusConnection>

#include <memory>

#include "Platform/Freedesktop/SessionLink.h"
#include "Platform/InstanceBus.h"

namespace nubble {

// The name on the D-Bus session bus.
class SessionBus : public QObject, public InstanceBus {
    Q_OBJECT

public:
    explicit SessionBus(QString serviceName);

    [[nodiscard]] bool isConnected() const override { return m_link->connection().isConnected(); }
    [[nodiscard]] bool claim(QObject *exported) override;
    void release() override;

private:
    bool claimOn(QDBusConnection bus);

    QString m_serviceName;
    std::shared_ptr<SessionLink> m_link;
    QObject *m_exported = nullptr; // while the name is wanted
};

} // namespace nubble
