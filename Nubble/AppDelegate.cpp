#include "AppDelegate.h"

#include <QCoreApplication>
#include <QCursor>
#include <QJsonDocument>

#include "Commands/StatusReport.h"
#include "Platform/MainThread.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

AppDelegate::AppDelegate(const Home &home, SessionBus &bus, Relaunch relaunch)
    : m_home(home), m_bus(bus), m_relaunch(std::move(relaunch)),
      m_defaults(Defaults::fileOf(u"com.brevandel.nubble"_s, home.configFolder())), m_addons(m_defaults),
      m_backend(makeBackend(home)),
      m_layout(Typography::percentLineHeight(), false, static_cast<int>(m_addons.actions().size())),
      m_placement(m_defaults, m_layout),
      m_sessionMonitor(
          home.file(u".claude/sessions"_s), home.file(u".claude/projects"_s), m_processes, m_clock),
      m_planUsage(home, m_clock, PlanUsageMonitor::domainIn(m_defaults)), m_activator(*m_backend.workspace),
      m_commands(m_placement, m_mainScreen, m_defaults, m_addons, m_sessionMonitor, m_planUsage),
      m_statusItem(
          *m_backend.statusHost, [this] { return statusMenu(menuState(), m_commands); },
          m_placement.isVisible()),
      m_panel(
          {
              .sessionMonitor = m_sessionMonitor,
              .planUsage = m_planUsage,
              .panelState = m_panelState,
              .placement = m_placement,
              .layout = m_layout,
              .mainScreen = m_mainScreen,
              .clock = m_clock,
              .preferences = *m_backend.preferences,
              .activator = m_activator,
              .notifications = m_notifications,
              .actions = m_addons.actions(),
          },
          m_backend.makePanelSurface)
{
    assertMainThread("Nubble/AppDelegate");
    observeState();
    observeRequests();
}

void AppDelegate::observeState()
{
    connect(
        m_backend.mouseMonitor.get(), &MouseMonitor::pressedElsewhere, &m_panelState, &PanelState::collapse);
    connect(&m_placement, &NotchPlacement::changed, &m_statusItem, [this] {
        m_statusItem.update(m_placement.isVisible());
    });
}

void AppDelegate::observeRequests()
{
    connect(&m_statusItem, &StatusItem::clicked, &m_commands, &AppCommands::toggleVisible);
    connect(&m_statusItem, &StatusItem::menuRequested, this, [this] {
        showMenu(statusMenu(menuState(), m_commands), QCursor::pos());
    });
    connect(&m_panel.view(), &NotchView::menuRequested, this, [this](const QPoint &screenPosition) {
        showMenu(notchMenu(menuState(), m_commands), screenPosition);
    });
    connect(
        &m_commands, &AppCommands::restartRequested, this, &AppDelegate::restart,
        Qt::SingleShotConnection); // one successor
    connect(&m_commands, &AppCommands::quitRequested, qApp, &QCoreApplication::quit, Qt::QueuedConnection);

    connect(&m_commands, &AppCommands::addonRequested, this, &AppDelegate::performOrExplain);
    connect(&m_notifications, &NotificationCenter::openChatSearch, this, [this] {
        performOrExplain({AddonRequest::Action::SearchChats});
    });
    connect(&m_notifications, &NotificationCenter::askClaude, this, [this] {
        performOrExplain({AddonRequest::Action::AskClaude});
    });
    connect(
        m_backend.notifications.get(), &DistributedNotifications::received, this,
        [this](const QString &name, const QMap<QString, QString> &userInfo) {
            if (const std::optional<AddonRequest> request = requestFrom(name, userInfo))
                (void)performFromOutside(*request);
        });
}

void AppDelegate::show()
{
    m_placement.setVisible(true);
    m_panel.applyPlacement();
}

void AppDelegate::openSessions()
{
    show();
    m_panel.openForKeyboard(PanelMode::sessions());
}

QString AppDelegate::status()
{
    QJsonObject report = statusReport(m_sessionMonitor, m_clock);
    report.insert("source"_L1, u"running"_s);
    report.insert("usage"_L1, usageReport(m_planUsage));
    report.insert("panel"_L1, panelReport(m_panelState, m_placement));
    return QString::fromUtf8(QJsonDocument(report).toJson(QJsonDocument::Compact));
}

std::optional<QString> AppDelegate::perform(const AddonRequest &request)
{
    return u"This version has nothing to open for \"%1\" yet."_s.arg(title(addonOf(request)));
}

void AppDelegate::performOrExplain(const AddonRequest &request)
{
    if (const std::optional<QString> obstacle = perform(request))
        m_statusItem.showMessage(title(addonOf(request)), *obstacle);
}

std::optional<QString> AppDelegate::performFromOutside(const AddonRequest &request)
{
    const Addon addon = addonOf(request);
    if (!m_addons.contains(addon))
        return u"The add-on \"%1\" is off. It is switched on in the menu."_s.arg(title(addon));
    return perform(request);
}

MenuState AppDelegate::menuState() const
{
    MenuState state{
        .edge = m_placement.edge(),
        .locked = m_placement.isLocked(),
        .visible = m_placement.isVisible(),
        .addons = m_addons,
        .missing = {}};
    for (const Addon addon : allAddons)
        if (const std::optional<QString> text = missing(addon, m_home, m_defaults))
            state.missing.insert(addon, *text);
    return state;
}

void AppDelegate::showMenu(const QList<MenuEntry> &entries, const QPoint &screenPosition)
{
    m_panel.view().endPreview();
    auto *menu = new Menu(&m_panel.view());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setEntries(entries);
    menu->popup(screenPosition);
}

void AppDelegate::restart()
{
    // The successor must find the name free.
    m_bus.release();
    m_relaunch.now();
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

} // namespace nubble
