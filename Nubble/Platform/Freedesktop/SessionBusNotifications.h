#pragma once

#include <memory>

#include "Platform/DistributedNotifications.h"

class QDBusMessage;

namespace nubble {

class SessionLink;

// Signals on the session bus, from any sender and object path: interface "com.brevandel.nubble", members
// "ask" and "notes", one argument of type a{sv}, or a{ss}, which is all that some senders can write.
class SessionBusNotifications : public DistributedNotifications {
    Q_OBJECT

public:
    explicit SessionBusNotifications(QObject *parent = nullptr);

private Q_SLOTS:
    // The raw message: with parameters of its own the toolkit would crash on another signature.
    void receive(const QDBusMessage &message);

private:
    void listen();

    std::shared_ptr<SessionLink> m_link;
};

} // namespace nubble
