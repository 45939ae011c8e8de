#pragma once

#include <QDBusServiceWatcher>
#include <QString>

#include <memory>
#include <optional>

#include "Platform/AnimationSetting.h"
#include "Platform/DesktopPreferences.h"

class QDBusMessage;

namespace nubble {

class SessionLink;

// The desktop's preferences. Whether motion is reduced is told, in this order, by the settings portal, by the
// desktop's settings on its own protocol (XSETTINGS on X11), and by KDE's file: the first that says anything
// counts. The portal is asked once the event loop runs, and again whenever another one comes; each is
// followed from then on. Until one has spoken motion is not reduced.
class FreedesktopPreferences : public DesktopPreferences {
    Q_OBJECT

public:
    // `settings` is null where the desktop has no such protocol.
    FreedesktopPreferences(
        const QString &configFolder, std::unique_ptr<AnimationSetting> settings, QObject *parent = nullptr);

    [[nodiscard]] bool reducedMotion() const override { return m_reducedMotion; }

private Q_SLOTS:
    void onSettingChanged(const QDBusMessage &message);

private:
    void watchPortal();
    void ask();
    void setPortalAnimates(std::optional<bool> animates);
    void update();

    std::unique_ptr<AnimationSetting> m_settings;
    std::unique_ptr<AnimationSetting> m_kde;
    std::shared_ptr<SessionLink> m_link;
    QDBusServiceWatcher m_portal;
    std::optional<bool> m_portalAnimates;
    bool m_reducedMotion = false;
};

} // namespace nubble
