#include "Platform/Freedesktop/SessionBus.h"

#include <QDBusMessage>

#include "Platform/Freedesktop/ControlNames.h"
#include "Platform/Logging.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

const auto objectPath = QString::fromLatin1(ControlNames::objectPath);

} // namespace

SessionBus::SessionBus(QString serviceName)
    : m_serviceName(std::move(serviceName)), m_link(SessionLink::ofThisProgram())
{
    connect(m_link.get(), &SessionLink::returned, this, [this] {
        if (m_exported && !claimOn(m_link->connection()))
            qCDebug(logPlatform) << "somebody else has taken the name on the session bus";
    });
}

bool SessionBus::claim(QObject *exported)
{
    m_exported = exported;
    return !isConnected() || claimOn(m_link->connection());
}

bool SessionBus::claimOn(QDBusConnection bus)
{
    // The object first: whoever sees the name must find it.
    const bool offered = bus.registerObject(objectPath, m_exported, QDBusConnection::ExportAdaptors);
    const bool owner = bus.registerService(m_serviceName);
    if (offered && !owner)
        bus.unregisterObject(objectPath);
    return owner;
}

// Not by the toolkit, which would wait for a bus that is stuck.
void SessionBus::release()
{
    if (!std::exchange(m_exported, nullptr) || !isConnected())
        return;
    QDBusConnection bus = m_link->connection();
    auto message = QDBusMessage::createMethodCall(
        u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"ReleaseName"_s);
    message.setArguments({m_serviceName});
    bus.call(message, QDBus::Block, 1000);
    bus.unregisterObject(objectPath);
}

} // namespace nubble
