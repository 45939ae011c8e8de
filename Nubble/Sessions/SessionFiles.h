#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>

#include <chrono>
#include <optional>

#include "Sessions/ClaudeSession.h"

namespace nubble {

// The session records in one folder. Every read opens and reads every file, since records are rewritten in
// place within one tick of the file system's clock and at the same size, but decodes only bytes that it has
// not met before. One thread at a time; may wait 2 ms for a writer. What cannot be read is left out.
class SessionFiles {
public:
    explicit SessionFiles(const QString &folder);

    // The records in the folder's own order; none when the folder cannot be listed.
    [[nodiscard]] std::optional<QList<ClaudeSession>> read();

private:
    enum class Outcome { Decoded, Undecodable, Unreadable, TooLarge };

    struct Record {
        QByteArray bytes;
        std::optional<ClaudeSession> session;
        quint64 pass = 0; // when it was last listed
        Outcome outcome = Outcome::Decoded;
    };

    // What one pass may still spend.
    struct Allowance {
        qint64 bytes;
        std::optional<std::chrono::steady_clock::time_point> waitUntil;
    };

    static Outcome readRecord(const char *name, int folder, Record &record, Allowance &allowance);
    static void settleRecord(
        const char *name, int folder, bool wasLeftOut, Record &record, Allowance &allowance);
    static void setOutcome(const char *name, Outcome outcome, Record &record);
    static bool waitForWriter(Allowance &allowance);
    Record &recordNamed(const char *name);

    QByteArray m_folder;
    QHash<QByteArray, Record> m_records; // by file name
    quint64 m_pass = 0;
};

} // namespace nubble
