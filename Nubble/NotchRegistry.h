#pragma once

#include <QList>

#include <memory>
#include <vector>

#include "Notch/NotchCard.h"

namespace nubble {

class ActiveAddons;
class ClaudeCell;
class Clock;
class DesktopPreferences;
class NotchAction;
class NotificationCenter;
class PanelState;
class PlanUsageMonitor;
class ProcessActivator;
class SessionMonitor;

// What the panel shows is registered here: the only place that knows both the panel and the features.

// The models that cards and ring show, and what these need beside. All outlive the panel.
struct NotchModels {
    SessionMonitor &sessions;
    PlanUsageMonitor &planUsage;
    ProcessActivator &activator;
    const Clock &clock;
    const DesktopPreferences &preferences;
};

[[nodiscard]] QList<NotchCard> notchCards(const NotchModels &models);

// Those of the active add-ons, in their order. `open` opens a card.
[[nodiscard]] std::vector<std::unique_ptr<NotchAction>> notchActions(
    const ActiveAddons &addons, PanelState &state, NotificationCenter &notifications,
    const std::function<void(PanelMode)> &open);

// Has the ring follow what it shows.
void showOnRing(ClaudeCell &ring, const NotchModels &models);

} // namespace nubble
