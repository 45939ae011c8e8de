#pragma once

#include "Widgets/Card.h"

namespace nubble {

class Clock;
class DesktopPreferences;
class PlanUsageMonitor;

// The card "usage". All that it is made from outlives it.
[[nodiscard]] Card usageCard(
    PlanUsageMonitor &planUsage, const Clock &clock, const DesktopPreferences &preferences);

} // namespace nubble
