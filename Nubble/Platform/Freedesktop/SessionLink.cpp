#include "Platform/Freedesktop/SessionLink.h"

#include "Platform/InstanceClient.h"
#include "Platform/Logging.h"

using namespace Qt::StringLiterals;

namespace nubble {

std::shared_ptr<SessionLink> SessionLink::ofThisProgram()
{
    static std::weak_ptr<SessionLink> shared;
    std::shared_ptr<SessionLink> link = shared.lock();
    if (!link)
        shared = link = std::make_shared<SessionLink>();
    return link;
}

// Not connected where no bus has been set up: libdbus would try to start one, which takes its time.
SessionLink::SessionLink()
    : m_connection(InstanceClient::isBusSetUp() ? QDBusConnection::sessionBus() : QDBusConnection(u"none"_s))
{
    m_pause.setInterval(std::chrono::seconds(5));
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &SessionLink::look);
    if (m_connection.isConnected())
        watch();
    else if (InstanceClient::isBusSetUp())
        m_pause.start();
}

void SessionLink::watch()
{
    m_connection.connect(
        {}, u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s, u"Disconnected"_s, this,
        SLOT(noteLoss()));
}

void SessionLink::noteLoss()
{
    qCDebug(logPlatform) << "the session bus is gone";
    m_pause.start();
    Q_EMIT lost();
}

// By a connection of its own: the toolkit waits without limit for a bus that accepts one and then says
// nothing.
void SessionLink::look()
{
    m_look = std::jthread([this] {
        const bool isThere = InstanceClient({}).connect();
        QMetaObject::invokeMethod(
            this, [this, isThere] { isThere ? connectAgain() : m_pause.start(); }, Qt::QueuedConnection);
    });
}

void SessionLink::connectAgain()
{
    const QString name = u"session bus %1"_s.arg(++m_number);
    m_connection = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
    if (!m_connection.isConnected()) {
        QDBusConnection::disconnectFromBus(name);
        m_pause.start();
        return;
    }
    qCDebug(logPlatform) << "the session bus is there again";
    watch();
    Q_EMIT returned();
}

} // namespace nubble
