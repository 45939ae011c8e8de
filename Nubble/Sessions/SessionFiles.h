#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>

#include <chrono>
#include <dirent.h>
#include <optional>
#include <stop_token>

#include "Platform/FolderWatch.h"
#include "Platform/RegularFile.h"
#include "Sessions/ClaudeSession.h"

namespace nubble {

// What a pass over a folder of session records has found.
struct SessionReading {
    std::optional<QList<ClaudeSession>>
        sessions{};        // in the folder's own order; none when it cannot be listed
    bool isBehind = false; // some records are not up to date, and another pass soon would help
};

// The session records in one of Claude Code's folders. A pass reads what has changed since the last one, and
// what could have since it was read: records are rewritten in place within one tick of the file system's
// clock and at the same size. It reads 4 MB at most, and may wait 5 ms for writers. What cannot be read is
// left out, but a record that no longer decodes keeps what it said for another second. Blocks; one thread at
// a time.
class SessionFiles {
public:
    explicit SessionFiles(const QString &claudeFolder);

    [[nodiscard]] WatchedEntries entries() const { return {m_folder, ".json"}; }

    [[nodiscard]] SessionReading read(const std::stop_token &stop = {});

private:
    enum class Outcome { Decoded, Undecodable, Unreadable, TooLarge, Postponed };

    struct Record {
        std::optional<FileState> state{};     // in this pass
        std::optional<FileState> readState{}; // just before it was last read; none: to be read in any case
        FileTime readAt;
        std::optional<ClaudeSession> session{};
        quint64 listedInPass = 0;
        quint64 readInPass = 0;
        Outcome outcome = Outcome::Decoded;
        std::optional<std::chrono::steady_clock::time_point> brokenSince{}; // while it does not decode
    };
    struct Listed {
        QByteArray name;
        Record *record;
    };

    // What one pass may still spend.
    struct Allowance {
        qint64 bytes;
        std::optional<std::chrono::steady_clock::time_point> waitUntil;
    };

    [[nodiscard]] QList<Listed> list(DIR &folder);
    [[nodiscard]] static bool isDue(const Record &record);
    static bool keepsLastReading(Record &record);
    [[nodiscard]] bool bringUpToDate(int folder, const Listed &listed, Allowance &allowance) const;
    static Outcome readSettled(
        const QByteArray &name, int folder, bool mayBeWritten, std::optional<ClaudeSession> &session,
        Allowance &allowance);
    static Outcome readOnce(
        const QByteArray &name, int folder, std::optional<ClaudeSession> &session, Allowance &allowance);
    static bool waitForWriter(Allowance &allowance);

    QString m_claudeFolder;
    QByteArray m_folder;                 // of the records in it
    QHash<QByteArray, Record> m_records; // by file name
    quint64 m_pass = 0;
};

} // namespace nubble
