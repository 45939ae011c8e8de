#include "NotchRegistry.h"

#include "Notch/ClaudeCell.h"
#include "Notch/NotchAction.h"
#include "Sessions/ProjectsCardContent.h"
#include "Sessions/SessionMonitor.h"
#include "Shell/Addon.h"
#include "Shell/HotKeyTable.h"
#include "Shell/NotificationCenter.h"
#include "Usage/PlanUsageMonitor.h"
#include "Usage/UsageCardContent.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

NotchCard sessionsCard(const NotchModels &models)
{
    return {
        .mode = PanelMode::sessions(),
        .makeContent =
            [models](const CardRoom &room) {
                auto *content =
                    new ProjectsCardContent(models.sessions, models.activator, models.clock, room.height);
                QObject::connect(content, &ProjectsCardContent::closeRequested, room.close);
                return content;
            },
        .refresh =
            [models] {
                models.sessions.refresh();
                models.planUsage.refresh(false);
            },
    };
}

NotchCard usageCard(const NotchModels &models)
{
    return {
        .mode = PanelMode::usage(),
        .makeContent =
            [models](const CardRoom &) {
                return new UsageCardContent(models.planUsage, models.clock, models.preferences);
            },
        .refresh = {},
    };
}

} // namespace

QList<NotchCard> notchCards(const NotchModels &models)
{
    return {sessionsCard(models), usageCard(models)};
}

std::vector<std::unique_ptr<NotchAction>> notchActions(
    const ActiveAddons &addons, PanelState &state, NotificationCenter &notifications,
    const std::function<void(PanelMode)> &open)
{
    std::vector<std::unique_ptr<NotchAction>> actions;
    const auto add = [&actions](const QString &symbol, const QString &helpText, std::function<void()> run) {
        actions.push_back(std::make_unique<NotchAction>(NotchAction::Look{symbol, helpText}, std::move(run)));
    };
    for (const Addon addon : addons.actions()) {
        if (addon == Addon::Search)
            add(u"magnifyingglass"_s, u"Search chats  "_s + keysText(HotKey::Search),
                [&state, &notifications] {
                    state.collapse();
                    notifications.postOpenChatSearch();
                });
        else if (addon == Addon::Ask)
            add(u"text.bubble.fill"_s, u"Ask Claude about your screen  "_s + keysText(HotKey::Ask),
                [&state, &notifications] {
                    state.collapse();
                    notifications.postAskClaude();
                });
        else if (addon == Addon::Notes)
            add(u"mic.fill"_s, u"Meeting notes"_s, [open] { open(PanelMode::notes()); });
    }
    return actions;
}

void showOnRing(ClaudeCell &ring, const NotchModels &models)
{
    const auto showActivity = [&ring, &monitor = models.sessions] { ring.setActivity(monitor.activity()); };
    const auto showUsage = [&ring, &usage = models.planUsage] { ring.setUsage(usage.windows()); };
    QObject::connect(&models.sessions, &SessionMonitor::sessionsChanged, &ring, showActivity);
    QObject::connect(&models.sessions, &SessionMonitor::recentlyCompletedChanged, &ring, showActivity);
    QObject::connect(&models.planUsage, &PlanUsageMonitor::changed, &ring, showUsage);
    showActivity();
    showUsage();
}

} // namespace nubble
