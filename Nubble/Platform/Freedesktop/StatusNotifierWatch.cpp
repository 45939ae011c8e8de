#include "Platform/Freedesktop/StatusNotifierWatch.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QTimer>

#include <array>

#include "Platform/Freedesktop/SessionLink.h"
#include "Platform/Logging.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

const auto service = u"org.kde.StatusNotifierWatcher"_s; // also its interface
const auto path = u"/StatusNotifierWatcher"_s;

} // namespace

StatusNotifierWatch::StatusNotifierWatch(QObject *parent)
    : QObject(parent), m_link(SessionLink::ofThisProgram())
{
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_watcher.addWatchedService(service);
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &StatusNotifierWatch::ask);
    connect(m_link.get(), &SessionLink::lost, this, [this] { setState(State::Absent); });
    connect(m_link.get(), &SessionLink::returned, this, &StatusNotifierWatch::listen);
    listen();
}

void StatusNotifierWatch::listen()
{
    QDBusConnection bus = m_link->connection();
    if (!bus.isConnected())
        return;
    m_watcher.setConnection(bus);
    bus.connect({}, path, service, u"StatusNotifierHostRegistered"_s, this, SLOT(ask()));
    bus.connect({}, path, service, u"StatusNotifierHostUnregistered"_s, this, SLOT(ask()));
    m_state = State::Unanswered;
    ask();
}

void StatusNotifierWatch::ask()
{
    auto message =
        QDBusMessage::createMethodCall(service, path, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    message.setArguments({service, u"IsStatusNotifierHostRegistered"_s});
    message.setAutoStartService(false);
    auto *call = new QDBusPendingCallWatcher(m_watcher.connection().asyncCall(message), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
        call->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *call;
        if (!reply.isError()) {
            setState(reply.value().variant().toBool() ? State::Hosted : State::Announced);
        } else if (reply.error().type() == QDBusError::NoReply) {
            setState(State::Unanswered);
            QTimer::singleShot(std::chrono::seconds(1), this, &StatusNotifierWatch::ask);
        } else {
            setState(State::Absent);
        }
    });
}

void StatusNotifierWatch::setState(State state)
{
    if (m_state == state)
        return;
    m_state = state;
    constexpr std::array names{"absent", "unanswered", "announced", "hosted"};
    qCDebug(logPlatform) << "the bus's host for status items is" << names.at(static_cast<size_t>(state));
    Q_EMIT changed();
}

} // namespace nubble
