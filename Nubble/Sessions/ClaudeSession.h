#pragma once

#include <QString>

#include <optional>
#include <utility>

namespace nubble {

// A conversation in a terminal: two terminals can have the same one open, one working and one not.
using SessionRun = std::pair<QString, qint32>;

// One running Claude Code session, as its own process describes it. Times are milliseconds since 1970 (UTC),
// any number that it claims (timePointOf). `sessionId` is the conversation's identity.
struct ClaudeSession {
    qint32 pid = 0;
    QString sessionId;
    QString cwd; // absolute
    double startedAt = 0;
    std::optional<QString> name;
    std::optional<QString> status;   // "busy" while it works, "waiting" for the user
    std::optional<double> updatedAt; // last change of status or name
    std::optional<QString> entrypoint;
    std::optional<QString> nameSource;
    std::optional<QString> procStart{}; // of the process, in the kernel's ticks: tells it from a later one
    std::optional<double> statusUpdatedAt{}; // last change of status alone
    std::optional<QString> waitingFor{};     // such as "permission prompt"; one line
    QString folder{};                        // Claude Code's, where its record is
    std::optional<QString> terminal{};       // such as "pts/3", where others have the same conversation

    bool operator==(const ClaudeSession &) const = default;

    [[nodiscard]] SessionRun run() const { return {sessionId, pid}; }
    [[nodiscard]] bool isBusy() const { return status == QStringView(u"busy"); }
    [[nodiscard]] bool isWaiting() const { return status == QStringView(u"waiting"); }
    // Those in a terminal do; those that another program drives need not.
    [[nodiscard]] bool tellsStatus() const { return entrypoint == QStringView(u"cli"); }
    [[nodiscard]] double lastActivity() const { return updatedAt.value_or(startedAt); }
    [[nodiscard]] double statusChange() const { return statusUpdatedAt.value_or(lastActivity()); }
};

} // namespace nubble
