#include "Platform/Freedesktop/FreedesktopPreferences.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QTimer>

#include "Platform/Freedesktop/KdeSettings.h"
#include "Platform/Freedesktop/SessionLink.h"
#include "Platform/Logging.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

const auto portal = u"org.freedesktop.portal.Desktop"_s;
const auto portalPath = u"/org/freedesktop/portal/desktop"_s;
const auto settingsInterface = u"org.freedesktop.portal.Settings"_s;
const auto settingsGroup = u"org.gnome.desktop.interface"_s;
const auto settingsKey = u"enable-animations"_s;

// Portals wrap the value in one variant too many.
std::optional<bool> truthOf(QVariant value)
{
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value.typeId() == QMetaType::Bool ? std::optional(value.toBool()) : std::nullopt;
}

} // namespace

FreedesktopPreferences::FreedesktopPreferences(
    const QString &configFolder, std::unique_ptr<AnimationSetting> settings, QObject *parent)
    : DesktopPreferences(parent), m_settings(std::move(settings)),
      m_kde(std::make_unique<KdeSettings>(configFolder)), m_link(SessionLink::ofThisProgram())
{
    if (m_settings)
        connect(m_settings.get(), &AnimationSetting::changed, this, &FreedesktopPreferences::update);
    connect(m_kde.get(), &AnimationSetting::changed, this, &FreedesktopPreferences::update);
    m_portal.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_portal.addWatchedService(portal);
    connect(&m_portal, &QDBusServiceWatcher::serviceOwnerChanged, this, &FreedesktopPreferences::ask);
    connect(m_link.get(), &SessionLink::returned, this, &FreedesktopPreferences::watchPortal);
    QTimer::singleShot(0, this, &FreedesktopPreferences::watchPortal);
}

void FreedesktopPreferences::watchPortal()
{
    update();
    QDBusConnection bus = m_link->connection();
    if (!bus.isConnected())
        return;
    // From whomever: naming the portal here would wait for the answer who owns that name.
    bus.connect(
        {}, portalPath, settingsInterface, u"SettingChanged"_s, {settingsGroup, settingsKey}, u"ssv"_s, this,
        SLOT(onSettingChanged(QDBusMessage)));
    m_portal.setConnection(bus);
    ask();
}

void FreedesktopPreferences::ask()
{
    auto message = QDBusMessage::createMethodCall(portal, portalPath, settingsInterface, u"Read"_s);
    message.setArguments({settingsGroup, settingsKey});
    message.setAutoStartService(false);
    auto *watcher = new QDBusPendingCallWatcher(m_portal.connection().asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isError())
            qCDebug(logPlatform) << "the settings portal does not answer:" << reply.error().name();
        setPortalAnimates(reply.isError() ? std::nullopt : truthOf(reply.value().variant()));
    });
}

void FreedesktopPreferences::onSettingChanged(const QDBusMessage &message)
{
    if (const auto animates = truthOf(message.arguments().value(2)))
        setPortalAnimates(animates);
}

void FreedesktopPreferences::setPortalAnimates(std::optional<bool> animates)
{
    m_portalAnimates = animates;
    update();
}

void FreedesktopPreferences::update()
{
    std::optional<bool> animates = m_portalAnimates;
    for (const AnimationSetting *each : {m_settings.get(), m_kde.get()})
        if (!animates && each)
            animates = each->animates();
    const bool reduced = !animates.value_or(true);
    if (m_reducedMotion == reduced)
        return;
    m_reducedMotion = reduced;
    Q_EMIT reducedMotionChanged();
}

} // namespace nubble
