#pragma once

#include <QDateTime>
#include <QString>

#include <stop_token>

#include "Platform/RegularFile.h"
#include "Review/ReviewState.h"

namespace nubble {

// What a reading rests on: while all of it is the same, another one gives the same.
struct DatabaseStamp {
    FileState database;
    std::optional<FileState> log; // the write-ahead log, where there is one
    QDateTime today;              // the moment at which the user's day began

    bool operator==(const DatabaseStamp &) const = default;
};

// Quenwick's database, opened afresh for each reading and only for reading. Quenwick may be writing, have
// another schema, or be gone; whatever goes wrong is an absent value. Any thread, but blocks: for a worker.
class ReviewDatabase {
public:
    explicit ReviewDatabase(QString path) : m_path(std::move(path)) { }

    // Whether there is such a file; one look at its attributes.
    [[nodiscard]] bool isThere() const;

    // None when it is no regular file.
    [[nodiscard]] std::optional<DatabaseStamp> stamp(const QDateTime &today) const;

    // What is pending today and later, the soonest first. Waits half a second for a writer, and gives up on
    // reading after two seconds, or at once when it is to stop.
    [[nodiscard]] std::optional<Inbox> read(const QDateTime &today, const std::stop_token &stop = {}) const;

private:
    [[nodiscard]] bool isSound() const;
    [[nodiscard]] bool isResting() const;

    QString m_path;
};

} // namespace nubble
