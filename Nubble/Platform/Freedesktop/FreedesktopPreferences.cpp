#include "Platform/Freedesktop/FreedesktopPreferences.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QTimer>

#include "Platform/Freedesktop/SessionLink.h"
#include "Platform/Logging.h"
#include "Platform/RegularFile.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

const auto portal = u"org.freedesktop.portal.Desktop"_s;
const auto portalPath = u"/org/freedesktop/portal/desktop"_s;
const auto settingsInterface = u"org.freedesktop.portal.Settings"_s;
const auto settingsGroup = u"org.gnome.desktop.interface"_s;
const auto settingsKey = u"enable-animations"_s;

} // namespace

bool kdeAnimationsAreOff(const QByteArray &kdeglobals)
{
    bool inGroup = false;
    for (const QByteArray &each : kdeglobals.split('\n')) {
        const QByteArray line = each.trimmed();
        if (line.startsWith('['))
            inGroup = line == "[KDE]";
        const qsizetype equals = line.indexOf('=');
        if (!inGroup || equals < 0 || line.left(equals).trimmed() != "AnimationDurationFactor")
            continue;
        bool isNumber = false;
        const double factor = line.mid(equals + 1).toDouble(&isNumber);
        return isNumber && factor <= 0;
    }
    return false;
}

FreedesktopPreferences::FreedesktopPreferences(Home home, QObject *parent)
    : DesktopPreferences(parent), m_home(std::move(home)), m_link(SessionLink::ofThisProgram())
{
    connect(m_link.get(), &SessionLink::returned, this, &FreedesktopPreferences::ask);
    QTimer::singleShot(0, this, &FreedesktopPreferences::ask);
}

void FreedesktopPreferences::ask()
{
    QDBusConnection bus = m_link->connection();
    if (!bus.isConnected()) {
        readKdeSettings();
        return;
    }
    // From whomever: naming the portal here would wait for the answer who owns that name.
    bus.connect(
        {}, portalPath, settingsInterface, u"SettingChanged"_s, {settingsGroup, settingsKey}, u"ssv"_s, this,
        SLOT(onSettingChanged(QDBusMessage)));
    auto message = QDBusMessage::createMethodCall(portal, portalPath, settingsInterface, u"Read"_s);
    message.setArguments({settingsGroup, settingsKey});
    message.setAutoStartService(false);
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isError()) {
            qCDebug(logPlatform) << "the settings portal does not answer:" << reply.error().name();
            readKdeSettings();
        } else {
            setAnimationsEnabled(reply.value().variant());
        }
    });
}

void FreedesktopPreferences::onSettingChanged(const QDBusMessage &message)
{
    setAnimationsEnabled(message.arguments().value(2));
}

void FreedesktopPreferences::readKdeSettings()
{
    constexpr qint64 enough = 256 * 1024;
    const auto file = RegularFile::open(m_home.configFolder() + u"/kdeglobals");
    if (const auto bytes = file ? file->read(0, enough) : std::nullopt)
        setReducedMotion(kdeAnimationsAreOff(*bytes));
}

// Portals wrap the value in one variant too many.
void FreedesktopPreferences::setAnimationsEnabled(const QVariant &value)
{
    QVariant enabled = value;
    while (enabled.canConvert<QDBusVariant>())
        enabled = enabled.value<QDBusVariant>().variant();
    if (enabled.typeId() == QMetaType::Bool)
        setReducedMotion(!enabled.toBool());
}

void FreedesktopPreferences::setReducedMotion(bool reduced)
{
    if (m_reducedMotion == reduced)
        return;
    m_reducedMotion = reduced;
    Q_EMIT reducedMotionChanged();
}

} // namespace nubble
