#include "Platform/Freedesktop/FreedesktopNotices.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include <algorithm>
#include <limits>
#include <utility>

#include "Platform/Freedesktop/SessionLink.h"
#include "Platform/Logging.h"
#include "Platform/MainThread.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

const auto service = u"org.freedesktop.Notifications"_s; // also its interface
const auto path = u"/org/freedesktop/Notifications"_s;
const auto application = u"com.brevandel.nubble"_s; // its desktop entry, and its icon
const auto clicked = u"default"_s;
constexpr qsizetype longestToken = 1000;

QVariantMap hintsOf(const Notice &notice)
{
    QVariantMap hints{{u"desktop-entry"_s, application}, {u"urgency"_s, QVariant::fromValue(uchar{1})}};
    if (notice.sound.isEmpty())
        hints.insert(u"suppress-sound"_s, true);
    else
        hints.insert(u"sound-name"_s, notice.sound);
    return hints;
}

} // namespace

FreedesktopNotices::FreedesktopNotices(QObject *parent)
    : DesktopNotices(parent), m_link(SessionLink::ofThisProgram())
{
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_watcher.addWatchedService(service);
    connect(
        &m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &before) {
            if (!before.isEmpty()) // one that comes may be starting for what it has been asked
                forgetServer();
        });
    connect(m_link.get(), &SessionLink::lost, this, &FreedesktopNotices::forgetServer);
    connect(m_link.get(), &SessionLink::returned, this, &FreedesktopNotices::listen);
    listen();
}

FreedesktopNotices::~FreedesktopNotices()
{
    for (const Posted &posted : std::as_const(m_posted))
        close(posted.serverId);
}

void FreedesktopNotices::listen()
{
    QDBusConnection bus = m_link->connection();
    if (!bus.isConnected())
        return;
    m_watcher.setConnection(bus);
    // From any sender, which is looked at later: the toolkit would wait for the bus to tell it.
    bus.connect({}, path, service, u"ActivationToken"_s, this, SLOT(noteToken(QDBusMessage)));
    bus.connect({}, path, service, u"ActionInvoked"_s, this, SLOT(noteAction(QDBusMessage)));
    bus.connect({}, path, service, u"NotificationClosed"_s, this, SLOT(noteClosed(QDBusMessage)));
}

void FreedesktopNotices::forgetServer()
{
    ++m_generation;
    m_isAsking = false;
    m_server.clear();
    m_posted.clear();
}

void FreedesktopNotices::post(quint32 id, const Notice &notice)
{
    assertMainThread("Nubble/Platform/Freedesktop/FreedesktopNotices");
    if (!m_link->connection().isConnected())
        return;
    Posted &posted = m_posted[id];
    posted.notice = notice;
    posted.isSent = false;
    sendNext();
}

void FreedesktopNotices::withdraw(quint32 id)
{
    assertMainThread("Nubble/Platform/Freedesktop/FreedesktopNotices");
    close(m_posted.take(id).serverId);
}

void FreedesktopNotices::sendNext()
{
    const auto next =
        std::find_if(m_posted.begin(), m_posted.end(), [](const Posted &posted) { return !posted.isSent; });
    if (m_isAsking || next == m_posted.end())
        return;
    if (m_server.isEmpty())
        askForCapabilities();
    else
        send(next.key(), *next);
}

// Which starts a server where the desktop has one that is to be started so.
void FreedesktopNotices::askForCapabilities()
{
    call(
        QDBusMessage::createMethodCall(service, path, service, u"GetCapabilities"_s),
        [this](const QDBusMessage &reply) {
            if (reply.type() == QDBusMessage::ErrorMessage) {
                qCDebug(logPlatform) << "nobody shows notices:" << reply.errorName();
                m_posted.clear();
                return;
            }
            m_server = reply.service();
            m_capabilities = reply.arguments().value(0).toStringList();
        });
}

void FreedesktopNotices::send(quint32 id, Posted &posted)
{
    posted.isSent = true;
    const Notice &notice = posted.notice;
    const bool hasAction = !notice.action.isEmpty() && m_capabilities.contains("actions"_L1);
    const QString text =
        m_capabilities.contains("body-markup"_L1) ? notice.text.toHtmlEscaped() : notice.text;
    auto message = QDBusMessage::createMethodCall(m_server, path, service, u"Notify"_s);
    message.setArguments(
        {u"Nubble"_s, posted.serverId, application, notice.title, text,
         hasAction ? QStringList{clicked, notice.action} : QStringList(), hintsOf(notice), -1});
    call(message, [this, id](const QDBusMessage &reply) { takeServerId(id, reply); });
}

void FreedesktopNotices::takeServerId(quint32 id, const QDBusMessage &reply)
{
    const quint32 serverId = reply.arguments().value(0).toUInt();
    const auto posted = m_posted.find(id);
    if (posted == m_posted.end())
        close(serverId); // withdrawn meanwhile
    else if (serverId == 0)
        m_posted.erase(posted);
    else
        posted->serverId = serverId;
}

void FreedesktopNotices::call(const QDBusMessage &message, const Then &then)
{
    constexpr int unlimited = std::numeric_limits<int>::max();
    m_isAsking = true;
    auto *watcher = new QDBusPendingCallWatcher(m_link->connection().asyncCall(message, unlimited), this);
    const auto answer = [this, watcher, then, generation = m_generation] {
        watcher->deleteLater();
        if (generation != m_generation)
            return;
        m_isAsking = false;
        then(watcher->reply());
        sendNext();
    };
    connect(watcher, &QDBusPendingCallWatcher::finished, this, answer);
}

void FreedesktopNotices::close(quint32 serverId) const
{
    if (serverId == 0)
        return;
    auto message = QDBusMessage::createMethodCall(m_server, path, service, u"CloseNotification"_s);
    message.setArguments({serverId});
    m_link->connection().send(message);
}

bool FreedesktopNotices::isOfServer(const QDBusMessage &message) const
{
    return !m_server.isEmpty() && message.service() == m_server;
}

// Whichever its first argument names.
QMap<quint32, FreedesktopNotices::Posted>::iterator FreedesktopNotices::find(const QDBusMessage &message)
{
    const quint32 serverId = message.arguments().value(0).toUInt();
    return std::find_if(m_posted.begin(), m_posted.end(), [serverId](const Posted &posted) {
        return serverId != 0 && posted.serverId == serverId;
    });
}

void FreedesktopNotices::noteToken(const QDBusMessage &message)
{
    if (!isOfServer(message))
        return;
    m_tokenOf = message.arguments().value(0).toUInt();
    m_token = message.arguments().value(1).toString().left(longestToken).toUtf8();
}

void FreedesktopNotices::noteAction(const QDBusMessage &message)
{
    if (!isOfServer(message) || message.arguments().value(1).toString() != clicked)
        return;
    const QByteArray token = std::exchange(m_token, {});
    const bool isItsToken = m_tokenOf == message.arguments().value(0).toUInt();
    if (const auto posted = find(message); posted != m_posted.end())
        Q_EMIT chosen(posted.key(), isItsToken ? token : QByteArray());
}

void FreedesktopNotices::noteClosed(const QDBusMessage &message)
{
    if (!isOfServer(message))
        return;
    const auto posted = find(message);
    if (posted == m_posted.end())
        return;
    if (posted->isSent)
        m_posted.erase(posted);
    else
        posted->serverId = 0; // what is to take its place is on its way
}

} // namespace nubble
