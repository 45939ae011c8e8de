#include "Platform/Freedesktop/SessionBus.h"

#include <QDBusMessage>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

const auto objectPath = u"/com/brevandel/nubble"_s;
const auto interfaceName = u"com.brevandel.nubble.Control"_s;

bool isBusSetUp()
{
    return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")
        || QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + u"/bus");
}

} // namespace

QDBusConnection SessionBus::connection()
{
    return isBusSetUp() ? QDBusConnection::sessionBus() : QDBusConnection(u"none"_s);
}

SessionBus::SessionBus(QString serviceName) : m_serviceName(std::move(serviceName)), m_bus(connection()) { }

SessionBus::~SessionBus()
{
    release();
}

bool SessionBus::claim(QObject *exported)
{
    if (!isConnected() || m_owner)
        return true;
    // The object first: whoever sees the name must find it.
    const bool offered = m_bus.registerObject(objectPath, exported, QDBusConnection::ExportAdaptors);
    m_owner = m_bus.registerService(m_serviceName);
    if (offered && !m_owner)
        m_bus.unregisterObject(objectPath);
    return m_owner;
}

void SessionBus::release()
{
    if (!m_owner)
        return;
    m_owner = false;
    m_bus.unregisterService(m_serviceName);
    m_bus.unregisterObject(objectPath);
}

std::optional<QVariantList> SessionBus::call(
    const QString &method, const QVariantList &arguments, int timeoutMsecs) const
{
    if (!isConnected())
        return std::nullopt;
    auto message = QDBusMessage::createMethodCall(m_serviceName, objectPath, interfaceName, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    const QDBusMessage reply = m_bus.call(message, QDBus::Block, timeoutMsecs);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return std::nullopt;
    return reply.arguments();
}

} // namespace nubble
