#pragma once

#include <QLoggingCategory>

namespace nubble {

// For engineers: why something was left out or chosen. Silent until QT_LOGGING_RULES switches them on, such
// as 'nubble.*=true'. File names and ids may be named, but never a title's, a prompt's or a question's text;
// what is polled is told when it changes. Any thread.
Q_DECLARE_LOGGING_CATEGORY(logPlatform)
Q_DECLARE_LOGGING_CATEGORY(logShell)
Q_DECLARE_LOGGING_CATEGORY(logSessions)
Q_DECLARE_LOGGING_CATEGORY(logUsage)
Q_DECLARE_LOGGING_CATEGORY(logReview)

} // namespace nubble
