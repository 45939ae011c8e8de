#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "Notch/PanelState.h"

namespace nubble {

class ActiveAddons;
class ClaudeCell;
class Clock;
class MeetingNotes;
class NotchAction;
class NotificationCenter;
class PlanUsageMonitor;
class QuenwickMonitor;
class SessionMonitor;

// How the features reach the panel's buttons and its ring. Main thread only.

// The buttons of the active add-ons, in their order. `open` opens a card; `notes` are there when that add-on
// is.
[[nodiscard]] std::vector<std::unique_ptr<NotchAction>> notchActions(
    const ActiveAddons &addons, PanelState &state, NotificationCenter &notifications,
    const MeetingNotes *notes, const std::function<void(PanelMode)> &open);

// The companion cell of Quenwick, with a clock for how soon something is due. `open` opens its card.
[[nodiscard]] std::unique_ptr<NotchAction> companionAction(
    const QuenwickMonitor &quenwick, const Clock &clock, const std::function<void(PanelMode)> &open);

// Has the ring follow what it shows.
void showOnRing(ClaudeCell &ring, const SessionMonitor &sessions, const PlanUsageMonitor &planUsage);

} // namespace nubble
