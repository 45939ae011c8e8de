#include "Commands/AppCommands.h"

#include "Placement/MainScreen.h"
#include "Placement/NotchPlacement.h"
#include "Sessions/SessionMonitor.h"
#include "Shell/Defaults.h"
#include "Usage/PlanUsageMonitor.h"

namespace nubble {

AppCommands::AppCommands(
    NotchPlacement &placement, const MainScreen &mainScreen, Defaults &defaults, const ActiveAddons &addons,
    SessionMonitor &sessionMonitor, PlanUsageMonitor &planUsage, QObject *parent)
    : QObject(parent), m_placement(placement), m_mainScreen(mainScreen), m_defaults(defaults),
      m_addons(addons), m_sessionMonitor(sessionMonitor), m_planUsage(planUsage)
{
}

void AppCommands::toggleLocked()
{
    m_placement.toggleLocked();
}

void AppCommands::toggleVisible()
{
    m_placement.toggleVisible();
}

void AppCommands::hide()
{
    m_placement.setVisible(false);
}

void AppCommands::moveToEdge(NotchEdge edge)
{
    m_placement.moveToEdge(edge, m_mainScreen.frame());
}

void AppCommands::centerOnEdge()
{
    m_placement.centerOnEdge();
}

void AppCommands::toggleAddon(Addon addon)
{
    m_defaults.set(defaultsKey(addon), !m_addons.contains(addon));
    restart();
}

void AppCommands::request(const AddonRequest &request)
{
    Q_EMIT addonRequested(request);
}

void AppCommands::refreshAll()
{
    m_sessionMonitor.refresh();
    m_sessionMonitor.refreshDetails(true);
    m_planUsage.refresh(true);
}

void AppCommands::restart()
{
    m_defaults.synchronize();
    Q_EMIT restartRequested();
}

void AppCommands::quit()
{
    Q_EMIT quitRequested();
}

} // namespace nubble
