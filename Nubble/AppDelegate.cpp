#include "AppDelegate.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QCursor>
#include <QDesktopServices>
#include <QGuiApplication>

#include "Ask/AskClaude.h"
#include "Commands/ChosenKeys.h"
#include "Commands/StatusReport.h"
#include "Meeting/MeetingCard.h"
#include "Meeting/MeetingTexts.h"
#include "NotchWiring.h"
#include "Platform/InstanceBus.h"
#include "Platform/MainThread.h"
#include "Platform/System.h"
#include "Review/QuenwickCard.h"
#include "Sessions/ClaudeFolders.h"
#include "Sessions/NoticePreferences.h"
#include "Sessions/SessionsCard.h"
#include "Shell/DesktopEntry.h"
#include "Shell/Tools.h"
#include "Usage/UsageCard.h"
#include "Widgets/Typography.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

void openLink(const QUrl &url)
{
    QDesktopServices::openUrl(url);
}

} // namespace

AppDelegate::AppDelegate(const Home &home, InstanceBus &bus, Relaunch relaunch)
    : m_home(home), m_bus(bus), m_relaunch(std::move(relaunch)), m_processes(System::processTable()),
      m_defaults(Defaults::fileOf(u"com.brevandel.nubble"_s, home.configFolder())), m_addons(m_defaults),
      m_backend(makeBackend(home)), m_meetingNotes(meetingNotes()),
      m_actions(notchActions(
          m_addons, m_panelState, m_notifications, m_meetingNotes.get(),
          [this](PanelMode mode) { m_panel.view().open(mode); })),
      m_quenwick(quenwickMonitor()),
      m_companion(
          m_quenwick && m_quenwick->state().installed
              ? companionAction(*m_quenwick, m_clock, [this](PanelMode mode) { m_panel.view().open(mode); })
              : nullptr),
      m_layout(Typography::percentLineHeight(), m_companion != nullptr, static_cast<int>(m_actions.size())),
      m_placement(m_defaults, m_layout),
      m_sessionMonitor(
          claudeFolders(home, m_defaults), AskClaude::workingDirectory(home), *m_processes, m_clock,
          {.records = System::folderWatch(),
           .transcripts = System::folderWatch(),
           .processes = System::processWatch()}),
      m_planUsage(home, m_clock, PlanUsageMonitor::domainIn(m_defaults)),
      m_activator(
          *m_backend.workspace,
          {.processes = *m_processes,
           .parentOf = TerminalLookups::askingPs(*m_processes),
           .tool = [home](const QString &name) { return Tools::find(name, home); }}),
      m_nextSession(m_sessionMonitor, m_activator, m_clock),
      m_sessionNotices(m_sessionMonitor, m_activator, *m_backend.notices, m_defaults),
      m_panel(
          {
              .state = m_panelState,
              .placement = m_placement,
              .layout = m_layout,
              .mainScreen = m_mainScreen,
              .preferences = *m_backend.preferences,
          },
          notchContents(), m_backend.makePanelSurface),
      m_commands(m_panel, m_placement, m_mainScreen, m_defaults, m_addons),
      m_statusItem(
          *m_backend.statusHost, [this] { return statusMenu(menuState(), m_commands); },
          m_placement.isVisible()),
      m_hotKeys(*m_backend.hotKeys)
{
    assertMainThread("Nubble/AppDelegate");
    registerParts();
    observeState();
    observeRequests();
    openAskAddon();
    openSearchAddon();
    openNotesAddon();
    openReviewAddon();
    registerHotKeys();
}

// The recorder finishes its notes by itself.
AppDelegate::~AppDelegate()
{
    if (m_meetingNotes)
        m_meetingNotes->interruptRecorder();
}

void AppDelegate::end()
{
    QCoreApplication::exit();
}

NotchContents AppDelegate::notchContents()
{
    Card sessions = sessionsCard(m_sessionMonitor, m_activator, m_clock);
    sessions.refresh = [this, refresh = sessions.refresh] {
        refresh();
        m_planUsage.refresh(false);
    };
    NotchContents contents{
        .cards = {sessions, usageCard(m_planUsage, m_clock, *m_backend.preferences)}, .actions = {}};
    if (m_meetingNotes)
        contents.cards.append(meetingCard(*m_meetingNotes, m_clock));
    if (m_companion) {
        contents.cards.append(quenwickCard(*m_quenwick, m_clock, *m_backend.preferences));
        contents.companion = m_companion.get();
    }
    for (const auto &action : m_actions)
        contents.actions.append(action.get());
    return contents;
}

std::unique_ptr<MeetingNotes> AppDelegate::meetingNotes()
{
    if (!m_addons.contains(Addon::Notes))
        return nullptr;
    m_microphone = System::audioInput();
    return std::make_unique<MeetingNotes>(
        m_home, m_defaults, m_clock,
        MeetingNotes::Surroundings{
            .processes = *m_processes,
            .microphone = *m_microphone,
            .clipboardText = [] { return QGuiApplication::clipboard()->text(); },
            .openLink = openLink},
        MeetingNotes::Pace());
}

template <typename Part, typename... Signals> void AppDelegate::tellOfChanges(Part &part, Signals... signal)
{
    (connect(&part, signal, &m_commands, &AppCommands::statusTouched), ...);
}

void AppDelegate::registerParts()
{
    showOnRing(m_panel.view().ring(), m_sessionMonitor, m_planUsage);
    m_commands.setNext([this](const AppCommands::Told &told) { m_nextSession.bringForward(told); });
    m_commands.addRefresh([this] {
        m_sessionMonitor.refresh();
        m_sessionMonitor.refreshDetails(true);
    });
    m_commands.addRefresh([this] { m_planUsage.refresh(true); });
    m_commands.addReport([this](QJsonObject &status) { reportSessions(m_sessionMonitor, m_clock, status); });
    m_commands.addReport([this](QJsonObject &status) { reportUsage(m_planUsage, status); });
    m_commands.addReport([this](QJsonObject &status) { reportPanel(m_panelState, m_placement, status); });
    m_commands.addReport([this](QJsonObject &status) { reportNotices(m_defaults, status); });
    m_commands.addReport([this](QJsonObject &status) { reportHotKeys(m_hotKeys, status); });
    tellOfChanges(
        m_sessionMonitor, &SessionMonitor::sessionsChanged, &SessionMonitor::recentlyCompletedChanged);
    tellOfChanges(m_sessionMonitor.details(), &SessionDetails::byIdChanged);
    tellOfChanges(m_planUsage, &PlanUsageMonitor::changed);
    tellOfChanges(m_panelState, &PanelState::modeChanged);
    tellOfChanges(m_placement, &NotchPlacement::changed);
}

void AppDelegate::observeState()
{
    connect(
        m_backend.mouseMonitor.get(), &MouseMonitor::pressedElsewhere, &m_panelState, &PanelState::collapse);
    if (!m_backend.mouseMonitor->canWatch())
        m_panel.view().closeCardsWhenLeft();
    connect(&m_placement, &NotchPlacement::changed, &m_statusItem, [this] {
        m_statusItem.update(m_placement.isVisible());
    });
    const auto followTranslucency = [this] { m_statusItem.setTranslucent(m_panel.isTranslucent()); };
    connect(&m_panel, &PanelWindow::translucencyChanged, &m_statusItem, followTranslucency);
    followTranslucency();
}

void AppDelegate::observeRequests()
{
    connect(&m_statusItem, &StatusItem::clicked, &m_commands, &AppCommands::toggleVisible);
    connect(&m_statusItem, &StatusItem::menuRequested, this, [this] {
        showMenu(statusMenu(menuState(), m_commands), m_panel.view().mapFromGlobal(QCursor::pos()));
    });
    connect(&m_panel.view(), &NotchView::menuRequested, this, [this](const QPoint &position) {
        showMenu(notchMenu(menuState(), m_commands), position);
    });
    connect(
        &m_commands, &AppCommands::restartRequested, this, &AppDelegate::restart,
        Qt::SingleShotConnection); // one successor
    connect(&m_commands, &AppCommands::quitRequested, qApp, &AppDelegate::end, Qt::QueuedConnection);
    connect(&m_commands, &AppCommands::refused, this, [this](Addon addon, const QString &why) {
        m_statusItem.showMessage(title(addon), why);
    });

    connect(&m_commands, &AppCommands::notifyingChanged, &m_sessionNotices, &SessionNotices::follow);
    connect(&m_sessionNotices, &SessionNotices::listRequested, &m_commands, [this] {
        (void)m_commands.openCard(PanelMode::sessions());
    });
    connect(&m_notifications, &NotificationCenter::openChatSearch, &m_commands, [this] {
        m_commands.request({AddonRequest::Action::SearchChats});
    });
    connect(&m_notifications, &NotificationCenter::askClaude, &m_commands, [this] {
        m_commands.request({AddonRequest::Action::AskClaude});
    });
    connect(
        m_backend.notifications.get(), &DistributedNotifications::received, &m_commands,
        [this](const QString &name, const QMap<QString, QString> &userInfo) {
            if (const std::optional<AddonRequest> request = requestFrom(name, userInfo))
                (void)m_commands.performFromOutside(*request); // there is nobody to tell
        });
}

void AppDelegate::openAskAddon()
{
    if (!m_addons.contains(Addon::Ask))
        return;
    const auto place = [this](const QSize &size) {
        return placeBeside(m_panel.bodyOnScreen(), size, m_mainScreen.visibleFrame().value_or(QRectF()));
    };
    m_askWindow = std::make_unique<AskWindow>(
        m_home,
        AskWindow::Surroundings{
            .workspace = *m_backend.workspace,
            .capture = *m_backend.screenCapture,
            .preferences = *m_backend.preferences,
            .makeSurface = m_backend.makeFloatingSurface,
            .place = place,
            .openLink = openLink});
    m_commands.setHandler(Addon::Ask, [this](const AddonRequest &request) {
        m_askWindow->activate(request.question);
        return Outcome::done();
    });
    m_commands.addReport([this](QJsonObject &status) { reportAsk(*m_askWindow, status); });
    tellOfChanges(*m_askWindow, &AskWindow::closed);
    tellOfChanges(
        m_askWindow->conversation(), &AskClaude::busyChanged, &AskClaude::problemChanged,
        &AskClaude::capturingChanged, &AskClaude::wasReset);
}

void AppDelegate::openSearchAddon()
{
    if (!m_addons.contains(Addon::Search))
        return;
    const auto place = [this](const QSize &size) {
        const QRectF visible = m_mainScreen.visibleFrame().value_or(QRectF());
        return placeInUpperPart(
            m_panel.bodyOnScreen(), size, m_mainScreen.frame().value_or(visible), visible);
    };
    m_searchWindow = std::make_unique<ChatSearchWindow>(
        m_home,
        ChatSearchWindow::Surroundings{
            .clock = m_clock,
            .preferences = *m_backend.preferences,
            .makeSurface = m_backend.makeFloatingSurface,
            .place = place,
            .openLink = openLink});
    m_commands.setHandler(Addon::Search, [this](const AddonRequest &) {
        m_searchWindow->show();
        return Outcome::done();
    });
    m_commands.addReport([this](QJsonObject &status) { reportSearch(*m_searchWindow, status); });
    tellOfChanges(*m_searchWindow, &ChatSearchWindow::closed);
    tellOfChanges(m_searchWindow->search(), &ChatSearch::answered, &ChatSearch::threadChanged);
}

void AppDelegate::openNotesAddon()
{
    if (!m_meetingNotes)
        return;
    m_commands.setHandler(Addon::Notes, [this](const AddonRequest &request) {
        const MeetingState &state = m_meetingNotes->state();
        if (request.action == AddonRequest::Action::StopNotes) {
            m_meetingNotes->stop();
            return Outcome::done();
        }
        const bool wasRunning = state.phase != MeetingState::Phase::Idle;
        m_meetingNotes->start();
        const bool hasStarted = !wasRunning && state.phase == MeetingState::Phase::Recording;
        return hasStarted ? Outcome::done() : Outcome::failed(statusText(state));
    });
    m_commands.addReport([this](QJsonObject &status) { reportNotes(*m_meetingNotes, status); });
    tellOfChanges(*m_meetingNotes, &MeetingNotes::changed);
    m_meetingNotes->watch();
}

std::unique_ptr<QuenwickMonitor> AppDelegate::quenwickMonitor()
{
    if (!m_addons.contains(Addon::Quenwick))
        return nullptr;
    return std::make_unique<QuenwickMonitor>(
        m_home,
        QuenwickMonitor::Surroundings{
            .clock = m_clock,
            .processes = *m_processes,
            .openApplication =
                [this](const QString &identifier, std::optional<pid_t> process) {
                    return openApplication(identifier, process);
                },
            .openUrl = openLink});
}

// One that runs is brought forward; otherwise it is started.
bool AppDelegate::openApplication(const QString &identifier, std::optional<pid_t> process)
{
    if (process && m_backend.workspace->activateNearest({.chain = {*process}}) == Activation::Requested)
        return true;
    return launchDesktopEntry(identifier, m_home);
}

void AppDelegate::openReviewAddon()
{
    if (!m_quenwick)
        return;
    m_commands.addRefresh([this] { m_quenwick->refreshNow(); });
    m_commands.addReport([this](QJsonObject &status) { reportReview(*m_quenwick, status); });
    tellOfChanges(*m_quenwick, &QuenwickMonitor::changed);
}

void AppDelegate::registerHotKeys()
{
    for (const HotKeyBinding &each : hotKeyBindings)
        if (m_addons.contains(each.addon))
            m_hotKeys.add(each.key, [this, key = each.key] { perform(key); });
    const auto tell = [this](const Outcome &outcome) {
        if (!outcome.isDone())
            m_statusItem.showMessage(u"Nubble"_s, outcome.why());
    };
    if (const auto keys = chosenKeys(m_defaults.string(u"keys.next"_s).value_or(QString())))
        m_hotKeys.add(*keys, keysText(*keys), u"next"_s, [this, tell] { m_commands.bringNext(tell); });
}

void AppDelegate::perform(HotKey key)
{
    switch (key) {
    case HotKey::Search:
        m_searchWindow->toggle();
        break;
    case HotKey::Ask:
        m_askWindow->toggle();
        break;
    case HotKey::Screenshot:
        m_askWindow->screenshot();
        break;
    }
    Q_EMIT m_commands.statusTouched();
}

MenuState AppDelegate::menuState() const
{
    MenuState state{
        .edge = m_placement.edge(),
        .locked = m_placement.isLocked(),
        .visible = m_placement.isVisible(),
        .notifies = NoticePreferences::in(m_defaults).isOn(),
        .addons = m_addons,
        .missing = {}};
    for (const Addon addon : allAddons)
        if (const std::optional<QString> text = missing(addon, m_home, m_defaults))
            state.missing.insert(addon, *text);
    return state;
}

void AppDelegate::showMenu(const QList<MenuEntry> &entries, const QPoint &position)
{
    m_panel.view().endPreview();
    auto *menu = new Menu(&m_panel.view());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setTranslucent(m_panel.isTranslucent());
    menu->setEntries(entries);
    m_panel.openMenu(*menu, position);
}

void AppDelegate::restart()
{
    // The successor must find the name free.
    m_bus.release();
    m_relaunch.now();
    QMetaObject::invokeMethod(qApp, &AppDelegate::end, Qt::QueuedConnection);
}

} // namespace nubble
