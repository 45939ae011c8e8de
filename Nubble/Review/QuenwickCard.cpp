#include "Review/QuenwickCard.h"

#include "Review/QuenwickCardContent.h"
#include "Review/QuenwickMonitor.h"

using namespace Qt::StringLiterals;

namespace nubble {

Card quenwickCard(QuenwickMonitor &quenwick, const Clock &clock, const DesktopPreferences &preferences)
{
    return {
        .name = "inbox"_L1,
        .makeContent =
            [&quenwick, &clock, &preferences](const CardRoom &room) {
                return new QuenwickCardContent(quenwick, clock, preferences, room.height, room.panel);
            },
        .refresh = [&quenwick] { quenwick.refresh(); },
    };
}

} // namespace nubble
