#include "Usage/UsageCard.h"

#include "Usage/UsageCardContent.h"

using namespace Qt::StringLiterals;

namespace nubble {

Card usageCard(PlanUsageMonitor &planUsage, const Clock &clock, const DesktopPreferences &preferences)
{
    return {
        .name = "usage"_L1,
        .makeContent =
            [&planUsage, &clock, &preferences](const CardRoom &room) {
                return new UsageCardContent(planUsage, clock, preferences, room.panel);
            },
        .refresh = {},
    };
}

} // namespace nubble
