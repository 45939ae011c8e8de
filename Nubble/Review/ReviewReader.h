#pragma once

#include "Review/ReviewDatabase.h"
#include "Review/ReviewParsing.h"

namespace nubble {

class ProcessTable;

// What one look at Quenwick's folder gives.
struct ReviewLook {
    std::optional<LiveState> live; // then the database is not looked at
    std::optional<Inbox> inbox;    // none when it could not be read, or is what it was
};

// Looks into Quenwick's folder. Blocks: for a worker, one call at a time.
class ReviewReader {
public:
    ReviewReader(const QString &folder, const ProcessTable &processes);

    // Whether there is a database; one look at its attributes. Any thread, at any time.
    [[nodiscard]] bool isInstalled() const { return m_database.isThere(); }

    // `afresh`: the database is to be read even if nothing in it has changed.
    [[nodiscard]] ReviewLook look(const QDateTime &today, bool afresh, const std::stop_token &stop);
    [[nodiscard]] ReviewLook readDatabase(const QDateTime &today, bool afresh, const std::stop_token &stop);

private:
    [[nodiscard]] std::optional<LiveState> liveState() const;

    const QString m_liveStatePath;
    const ReviewDatabase m_database;
    const ProcessTable &m_processes;
    std::optional<DatabaseStamp> m_read; // none after a reading that failed
    bool m_isSettled = false;            // read twice with that stamp
};

} // namespace nubble
