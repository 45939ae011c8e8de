#pragma once

#include <QObject>

#include "Commands/AddonRequest.h"
#include "Placement/NotchEdge.h"
#include "Shell/Addon.h"

namespace nubble {

class Defaults;
class MainScreen;
class NotchPlacement;
class PlanUsageMonitor;
class SessionMonitor;

// What the user can ask of the whole program: one place for every menu and for the command line. Main thread
// only.
class AppCommands : public QObject {
    Q_OBJECT

public:
    AppCommands(
        NotchPlacement &placement, const MainScreen &mainScreen, Defaults &defaults,
        const ActiveAddons &addons, SessionMonitor &sessionMonitor, PlanUsageMonitor &planUsage,
        QObject *parent = nullptr);

    void toggleLocked();
    void toggleVisible();
    void hide();
    void moveToEdge(NotchEdge edge);
    void centerOnEdge();
    void toggleAddon(Addon addon); // takes effect by a restart, at once
    void request(const AddonRequest &request);
    void refreshAll();
    void restart();
    void quit();

Q_SIGNALS:
    void addonRequested(const AddonRequest &request);
    void restartRequested();
    void quitRequested();

private:
    NotchPlacement &m_placement;
    const MainScreen &m_mainScreen;
    Defaults &m_defaults;
    const ActiveAddons &m_addons;
    SessionMonitor &m_sessionMonitor;
    PlanUsageMonitor &m_planUsage;
};

} // namespace nubble
