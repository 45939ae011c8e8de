#include "Platform/Freedesktop/SessionBus.h"

#include <QDBusError>
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

BusAnswer::Kind kindOf(const QDBusError &error)
{
    if (error.type() == QDBusError::ServiceUnknown
        || error.name() == u"org.freedesktop.DBus.Error.NameHasNoOwner") // which has no type of its own
        return BusAnswer::Kind::NotOwned;
    switch (error.type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
    case QDBusError::Disconnected:
        return BusAnswer::Kind::Silence;
    default:
        return BusAnswer::Kind::Error;
    }
}

} // namespace

QDBusConnection SessionBus::connection()
{
    return isBusSetUp() ? QDBusConnection::sessionBus() : QDBusConnection(u"none"_s);
}

SessionBus::SessionBus(QString serviceName) : m_serviceName(std::move(serviceName)), m_bus(connection()) { }

SessionBus::~SessionBus()
{
    giveUp();
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
    giveUp();
}

void SessionBus::giveUp()
{
    if (!m_owner)
        return;
    m_owner = false;
    m_bus.unregisterService(m_serviceName);
    m_bus.unregisterObject(objectPath);
}

BusAnswer SessionBus::call(
    const QString &method, const QVariantList &arguments, std::chrono::milliseconds timeout) const
{
    if (!isConnected())
        return {};
    auto message = QDBusMessage::createMethodCall(m_serviceName, objectPath, interfaceName, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    const QDBusMessage reply = m_bus.call(message, QDBus::Block, static_cast<int>(timeout.count()));
    if (reply.type() == QDBusMessage::ReplyMessage)
        return {BusAnswer::Kind::Reply, reply.arguments(), {}};
    return {kindOf(QDBusError(reply)), {}, reply.errorMessage()};
}

} // namespace nubble
