#include "Platform/Freedesktop/ScreenLock.h"

#include <QDBusMessage>

#include "Platform/Freedesktop/SessionLink.h"

using namespace Qt::StringLiterals;

namespace nubble {

ScreenLock::ScreenLock(QObject *parent) : QObject(parent), m_link(SessionLink::ofThisProgram())
{
    m_locker.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&m_locker, &QDBusServiceWatcher::serviceUnregistered, this, [this] { setLocked(false); });
    connect(m_link.get(), &SessionLink::lost, this, [this] { setLocked(false); });
    connect(m_link.get(), &SessionLink::returned, this, &ScreenLock::listen);
    listen();
}

void ScreenLock::listen()
{
    QDBusConnection bus = m_link->connection();
    if (!bus.isConnected())
        return;
    m_locker.setConnection(bus);
    // The desktops' own names for the same signal.
    for (const auto &interface :
         {u"org.freedesktop.ScreenSaver"_s, u"org.gnome.ScreenSaver"_s, u"org.cinnamon.ScreenSaver"_s,
          u"org.mate.ScreenSaver"_s, u"org.xfce.ScreenSaver"_s})
        bus.connect({}, {}, interface, u"ActiveChanged"_s, u"b"_s, this, SLOT(onActiveChanged(QDBusMessage)));
}

void ScreenLock::onActiveChanged(const QDBusMessage &message)
{
    const bool locked = message.arguments().value(0).toBool();
    m_locker.setWatchedServices(locked ? QStringList(message.service()) : QStringList());
    setLocked(locked);
}

void ScreenLock::setLocked(bool locked)
{
    if (m_isLocked == locked)
        return;
    m_isLocked = locked;
    Q_EMIT changed();
}

} // namespace nubble
