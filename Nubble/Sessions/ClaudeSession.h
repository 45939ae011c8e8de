#pragma once

#include <QString>

#include <optional>

namespace nubble {

// One running Claude Code session, as its own process describes it. Times are milliseconds since 1970 (UTC),
// any number that it claims (timePointOf). `sessionId` is its identity, though two terminals can have the
// same conversation open.
struct ClaudeSession {
    qint32 pid = 0;
    QString sessionId;
    QString cwd; // absolute
    double startedAt = 0;
    std::optional<QString> name;
    std::optional<QString> status;   // "busy" while it works, "waiting" for the user
    std::optional<double> updatedAt; // last change of status
    std::optional<QString> entrypoint;
    std::optional<QString> nameSource;

    bool operator==(const ClaudeSession &) const = default;

    [[nodiscard]] bool isBusy() const { return status == QStringView(u"busy"); }
    [[nodiscard]] bool isWaiting() const { return status == QStringView(u"waiting"); }
    [[nodiscard]] double lastActivity() const { return updatedAt.value_or(startedAt); }
};

} // namespace nubble
