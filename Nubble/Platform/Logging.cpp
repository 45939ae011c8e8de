#include "Platform/Logging.h"

namespace nubble {

Q_LOGGING_CATEGORY(logPlatform, "nubble.platform", QtWarningMsg)
Q_LOGGING_CATEGORY(logShell, "nubble.shell", QtWarningMsg)
Q_LOGGING_CATEGORY(logSessions, "nubble.sessions", QtWarningMsg)
Q_LOGGING_CATEGORY(logUsage, "nubble.usage", QtWarningMsg)
Q_LOGGING_CATEGORY(logReview, "nubble.review", QtWarningMsg)

} // namespace nubble
