#include "NotchWiring.h"

#include <QDateTime>
#include <QTimer>

#include <chrono>

#include "Meeting/MeetingNotes.h"
#include "Meeting/MeetingTexts.h"
#include "Notch/ClaudeCell.h"
#include "Notch/NotchAction.h"
#include "Platform/Clock.h"
#include "Review/QuenwickMonitor.h"
#include "Sessions/SessionMonitor.h"
#include "Shell/Addon.h"
#include "Shell/HotKeyTable.h"
#include "Shell/NotificationCenter.h"
#include "Usage/PlanUsageMonitor.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

NotchAction::Look lookOf(const MeetingNotes &notes)
{
    const bool runs = notes.state().isRunning();
    return {runs ? u"record.circle.fill"_s : u"mic.fill"_s, buttonHelp(notes.state()), runs};
}

NotchAction::Look lookOf(const QuenwickMonitor &quenwick, const Clock &clock)
{
    const ReviewState &state = quenwick.state();
    const QDateTime now = localTime(clock.now());
    const QString count =
        isAllClear(state) ? QString() : u" — %1 %2"_s.arg(state.inbox.pending).arg(countText(state));
    return {
        .symbol = u"tray.full.fill"_s,
        .helpText = u"Quenwick"_s + count,
        .badge = state.inbox.pending,
        .caption = NextDue::inShort(NextDue::of(state.inbox.items), now)};
}

} // namespace

std::vector<std::unique_ptr<NotchAction>> notchActions(
    const ActiveAddons &addons, PanelState &state, NotificationCenter &notifications,
    const MeetingNotes *notes, const std::function<void(PanelMode)> &open)
{
    std::vector<std::unique_ptr<NotchAction>> actions;
    const auto add = [&actions](const NotchAction::Look &look, const std::function<void()> &run) {
        actions.push_back(std::make_unique<NotchAction>(look, run));
    };
    for (const Addon addon : addons.actions()) {
        if (addon == Addon::Search)
            add({u"magnifyingglass"_s, u"Search chats  "_s + keysText(HotKey::Search)},
                [&state, &notifications] {
                    state.collapse();
                    notifications.postOpenChatSearch();
                });
        else if (addon == Addon::Ask)
            add({u"text.bubble.fill"_s, u"Ask Claude about your screen  "_s + keysText(HotKey::Ask)},
                [&state, &notifications] {
                    state.collapse();
                    notifications.postAskClaude();
                });
        else if (addon == Addon::Notes) {
            add(lookOf(*notes), [open] { open(PanelMode::notes()); });
            QObject::connect(
                notes, &MeetingNotes::changed, actions.back().get(),
                [notes, action = actions.back().get()] { action->setLook(lookOf(*notes)); });
        }
    }
    return actions;
}

std::unique_ptr<NotchAction> companionAction(
    const QuenwickMonitor &quenwick, const Clock &clock, const std::function<void(PanelMode)> &open)
{
    auto action =
        std::make_unique<NotchAction>(lookOf(quenwick, clock), [open] { open(PanelMode::inbox(true)); });
    const auto follow = [&quenwick, &clock, action = action.get()] {
        action->setLook(lookOf(quenwick, clock));
    };
    QObject::connect(&quenwick, &QuenwickMonitor::changed, action.get(), follow);
    auto *tick = new QTimer(action.get()); // what is due becomes due
    QObject::connect(tick, &QTimer::timeout, action.get(), follow);
    tick->setTimerType(Qt::VeryCoarseTimer);
    tick->start(30s);
    return action;
}

void showOnRing(ClaudeCell &ring, const SessionMonitor &sessions, const PlanUsageMonitor &planUsage)
{
    const auto showActivity = [&ring, &sessions] { ring.setActivity(sessions.activity()); };
    const auto showUsage = [&ring, &planUsage] { ring.setUsage(planUsage.windows(), planUsage.isOld()); };
    QObject::connect(&sessions, &SessionMonitor::sessionsChanged, &ring, showActivity);
    QObject::connect(&sessions, &SessionMonitor::recentlyCompletedChanged, &ring, showActivity);
    QObject::connect(&planUsage, &PlanUsageMonitor::changed, &ring, showUsage);
    showActivity();
    showUsage();
}

} // namespace nubble
