#pragma once

#include <QObject>

#include "Ask/AskWindow.h"
#include "Commands/AppCommands.h"
#include "Commands/Menus.h"
#include "Meeting/MeetingNotes.h"
#include "Notch/NotchAction.h"
#include "Notch/PanelState.h"
#include "Notch/PanelWindow.h"
#include "Placement/Layout.h"
#include "Placement/MainScreen.h"
#include "Placement/NotchPlacement.h"
#include "Platform/AudioInput.h"
#include "Platform/Backend.h"
#include "Platform/Clock.h"
#include "Platform/Home.h"
#include "Platform/ProcessTable.h"
#include "Review/QuenwickMonitor.h"
#include "Search/ChatSearchWindow.h"
#include "Sessions/NextSession.h"
#include "Sessions/ProcessActivator.h"
#include "Sessions/SessionMonitor.h"
#include "Sessions/SessionNotices.h"
#include "Shell/Addon.h"
#include "Shell/Defaults.h"
#include "Shell/HotKeys.h"
#include "Shell/NotificationCenter.h"
#include "Shell/Relaunch.h"
#include "Tray/StatusItem.h"
#include "Usage/PlanUsageMonitor.h"

namespace nubble {

class InstanceBus;

// The composition root: owns every service, model and window for the whole run, in the order in which they
// are built, and wires them. Main thread only.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    // `bus` owns the program's name, which a restart gives up; it outlives the delegate.
    AppDelegate(const Home &home, InstanceBus &bus, Relaunch relaunch);
    ~AppDelegate() override;

    static void end(); // the program; no open window can refuse it, as it could refuse quit()

    [[nodiscard]] AppCommands &commands() { return m_commands; }

private:
    [[nodiscard]] NotchContents notchContents();                // the panel's cards and buttons
    [[nodiscard]] std::unique_ptr<MeetingNotes> meetingNotes(); // while the add-on is on
    void registerParts();
    template <typename Part, typename... Signals> void tellOfChanges(Part &part, Signals... signal);
    void openAskAddon();
    void openSearchAddon();
    void openNotesAddon();
    [[nodiscard]] std::unique_ptr<QuenwickMonitor> quenwickMonitor(); // while the add-on is on
    [[nodiscard]] bool openApplication(const QString &identifier, std::optional<pid_t> process);
    void openReviewAddon();
    void observeState();
    void observeRequests();
    void registerHotKeys(); // those of the active add-ons
    void perform(HotKey key);
    [[nodiscard]] MenuState menuState() const;
    void showMenu(const QList<MenuEntry> &entries, const QPoint &position); // in the panel's coordinates
    void restart();

    Home m_home;
    InstanceBus &m_bus;
    Relaunch m_relaunch;
    SystemClock m_clock;
    std::unique_ptr<ProcessTable> m_processes;
    Defaults m_defaults;
    ActiveAddons m_addons;
    Backend m_backend;
    std::unique_ptr<AudioInput> m_microphone; // while that add-on is on, as the next
    std::unique_ptr<MeetingNotes> m_meetingNotes;
    PanelState m_panelState;
    NotificationCenter m_notifications;
    std::vector<std::unique_ptr<NotchAction>> m_actions;
    std::unique_ptr<QuenwickMonitor> m_quenwick; // while that add-on is on
    std::unique_ptr<NotchAction> m_companion;    // and Quenwick was installed when we started
    Layout m_layout;                             // has room for all of them
    MainScreen m_mainScreen;
    NotchPlacement m_placement;
    SessionMonitor m_sessionMonitor;
    PlanUsageMonitor m_planUsage;
    ProcessActivator m_activator;
    NextSession m_nextSession;
    SessionNotices m_sessionNotices;
    PanelWindow m_panel;
    AppCommands m_commands;
    // While the add-on is on.
    std::unique_ptr<AskWindow> m_askWindow;
    std::unique_ptr<ChatSearchWindow> m_searchWindow;
    StatusItem m_statusItem;
    HotKeys m_hotKeys;
};

} // namespace nubble
