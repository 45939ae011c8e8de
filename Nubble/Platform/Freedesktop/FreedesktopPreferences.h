#pragma once

#include <QByteArray>

#include <memory>

#include "Platform/DesktopPreferences.h"
#include "Platform/Home.h"

class QDBusMessage;
class QVariant;

namespace nubble {

class SessionLink;

// Whether KDE's settings file switches animations off.
[[nodiscard]] bool kdeAnimationsAreOff(const QByteArray &kdeglobals);

// The desktop's preferences from the settings portal, or from KDE's file where the portal does not know.
// Asked for once the event loop runs, and followed from then on; until the answer has come motion is not
// reduced.
class FreedesktopPreferences : public DesktopPreferences {
    Q_OBJECT

public:
    explicit FreedesktopPreferences(Home home, QObject *parent = nullptr);

    [[nodiscard]] bool reducedMotion() const override { return m_reducedMotion; }

private Q_SLOTS:
    void onSettingChanged(const QDBusMessage &message);

private:
    void ask();
    void readKdeSettings();
    void setAnimationsEnabled(const QVariant &value);
    void setReducedMotion(bool reduced);

    Home m_home;
    std::shared_ptr<SessionLink> m_link;
    bool m_reducedMotion = false;
};

} // namespace nubble
