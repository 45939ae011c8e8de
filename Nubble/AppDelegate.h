#pragma once

#include <QObject>

#include "Commands/AddonRequest.h"
#include "Commands/AppCommands.h"
#include "Commands/Menus.h"
#include "Notch/PanelState.h"
#include "Notch/PanelWindow.h"
#include "Placement/Layout.h"
#include "Placement/MainScreen.h"
#include "Placement/NotchPlacement.h"
#include "Platform/Backend.h"
#include "Platform/Clock.h"
#include "Platform/Freedesktop/SessionBus.h"
#include "Platform/Home.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Sessions/ProcessActivator.h"
#include "Sessions/SessionMonitor.h"
#include "Shell/Addon.h"
#include "Shell/Defaults.h"
#include "Shell/NotificationCenter.h"
#include "Shell/Relaunch.h"
#include "Tray/StatusItem.h"
#include "Usage/PlanUsageMonitor.h"

namespace nubble {

// The composition root: owns every service, model and window for the whole run, in the order in which they
// are built, and wires them. Main thread only.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    // `bus` owns the program's name, which a restart gives up; it outlives the delegate.
    AppDelegate(const Home &home, SessionBus &bus, Relaunch relaunch);

    void show();
    void openSessions();
    [[nodiscard]] QString status(); // JSON
    [[nodiscard]] AppCommands &commands() { return m_commands; }

    // For other programs, which reach only what is switched on. Why not, when it is not done.
    [[nodiscard]] std::optional<QString> performFromOutside(const AddonRequest &request);

private:
    void observeState();
    void observeRequests();
    [[nodiscard]] std::optional<QString> perform(const AddonRequest &request); // likewise
    void performOrExplain(const AddonRequest &request);
    [[nodiscard]] MenuState menuState() const;
    void showMenu(const QList<MenuEntry> &entries, const QPoint &screenPosition);
    void restart();

    Home m_home;
    SessionBus &m_bus;
    Relaunch m_relaunch;
    SystemClock m_clock;
    LinuxProcessTable m_processes;
    Defaults m_defaults;
    ActiveAddons m_addons;
    Backend m_backend;
    Layout m_layout;
    MainScreen m_mainScreen;
    NotchPlacement m_placement;
    PanelState m_panelState;
    NotificationCenter m_notifications;
    SessionMonitor m_sessionMonitor;
    PlanUsageMonitor m_planUsage;
    ProcessActivator m_activator;
    AppCommands m_commands;
    StatusItem m_statusItem;
    PanelWindow m_panel;
};

} // namespace nubble
