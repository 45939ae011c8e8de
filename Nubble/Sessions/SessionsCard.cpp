#include "Sessions/SessionsCard.h"

#include "Sessions/ProjectsCardContent.h"
#include "Sessions/SessionMonitor.h"

using namespace Qt::StringLiterals;

namespace nubble {

Card sessionsCard(SessionMonitor &monitor, ProcessActivator &activator, const Clock &clock)
{
    return {
        .name = "sessions"_L1,
        .makeContent =
            [&monitor, &activator, &clock](const CardRoom &room) {
                auto *content = new ProjectsCardContent(monitor, activator, clock, room.height, room.panel);
                QObject::connect(content, &ProjectsCardContent::closeRequested, room.close);
                return content;
            },
        .refresh = [&monitor] { monitor.refresh(); },
    };
}

} // namespace nubble
