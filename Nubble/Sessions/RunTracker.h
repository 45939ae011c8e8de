#pragma once

#include <QHash>
#include <QList>
#include <QSet>

#include <chrono>
#include <optional>

#include "Platform/Clock.h"
#include "Sessions/ClaudeSession.h"

namespace nubble {

// When a session did what, as far as it was seen or its record tells.
struct RunTimes {
    std::optional<TimePoint> runningSince{}; // while it works, or asks something on the way
    std::optional<TimePoint> waitingSince{}; // while it waits for the user
    std::optional<TimePoint> finishedAt{};   // the end of its last run
};

// What has happened between two looks.
struct RunNews {
    struct Ended {
        ClaudeSession session;
        std::chrono::milliseconds length; // 0 of a run that was missed
    };

    QList<ClaudeSession> begunToWait{};
    QList<Ended> ended{};
};

// Follows the runs of sessions from look to look. A run goes from the first work to the end of the last,
// however often it asks something on the way. Plain; one thread at a time.
class RunTracker {
public:
    // `live` are all sessions that there are now. Of what was so at the first look nothing is news.
    RunNews update(const QList<ClaudeSession> &live, TimePoint now);

    [[nodiscard]] RunTimes times(const SessionRun &run) const { return m_seen.value(run).times; }

    // Those that have finished a run within the last two minutes, and when the first of them no longer has.
    [[nodiscard]] QSet<SessionRun> recentlyCompleted(TimePoint now) const;
    [[nodiscard]] std::optional<std::chrono::milliseconds> nextExpiry(TimePoint now) const;

private:
    struct Seen {
        ClaudeSession session;
        RunTimes times;
    };

    [[nodiscard]] static bool hasMissedRun(const Seen &before, const ClaudeSession &now);
    static void follow(Seen &seen, const Seen *before, TimePoint now, RunNews &news);

    QHash<SessionRun, Seen> m_seen;
    bool m_hasLooked = false;
};

} // namespace nubble
