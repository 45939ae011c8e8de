#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <stop_token>
#include <variant>

#include "Platform/RegularFile.h"
#include "Shell/Command.h"
#include "Shell/Distribution.h"
#include "Usage/CacheScan.h"
#include "Usage/Reading.h"

namespace nubble {

struct ReadOutcome {
    std::variant<Reading, ReadProblem> result;
    std::optional<QList<QByteArray>> entries; // all usage entries, when the known ones gave no reading
    std::optional<QString> installCommand;    // for people without zstd, where it is known
};

struct ReaderPace {
    CommandLimits decompression{.output = 16'777'216, .time = std::chrono::seconds(10)};
    std::chrono::milliseconds secondLook{150}; // an entry being written is whole again by then
};

// Reads the newest usage answer out of the desktop application's HTTP cache. Blocks and starts child
// processes, though only for entries that have changed since it last did, and none after one that had to be
// ended for its time: for a worker, one call at a time.
class PlanUsageReader {
public:
    using FindTool = std::function<std::optional<QString>()>;
    using OsRelease = std::function<QByteArray()>;

    // `findZstd` is asked at each read, and `osRelease` when it has found nothing.
    PlanUsageReader(
        const QString &cacheFolder, const QString &domain, FindTool findZstd, ReaderPace pace = {},
        OsRelease osRelease = Distribution::osRelease);

    // Looks into the entries `known` first; scans the folder only when none of them gives a reading.
    [[nodiscard]] ReadOutcome read(const QList<QByteArray> &known, const std::stop_token &stop = {});

    void forget(); // has the next read try again whatever failed, and list the folder if it scans it

private:
    struct Run;
    struct Entry;
    struct Look {
        std::optional<Reading> reading;
        const char *obstacle = nullptr;
        bool lasts = true; // until the entry changes
    };
    struct LastLook {
        FileState state;
        std::optional<Reading> reading;
    };

    ReadOutcome attempt(const QList<QByteArray> &known, Run &run);
    std::optional<Reading> newestReading(const QList<QByteArray> &entries, Run &run);
    std::optional<Reading> readingOf(const Entry &entry, Run &run);
    Look lookInto(const QByteArray &entry, Run &run) const;
    CommandEnd decompress(QByteArrayView body, Run &run) const;
    void note(const QByteArray &what, const char *obstacle);
    bool missesLast(const ReadOutcome &outcome) const;

    CacheScan m_scan;
    QByteArray m_domain;
    FindTool m_findZstd;
    ReaderPace m_pace;
    OsRelease m_osRelease;
    std::optional<Reading> m_last;
    QHash<QByteArray, LastLook> m_looks;         // by the entry
    QHash<QByteArray, const char *> m_obstacles; // for the log, by what they are an obstacle to
};

} // namespace nubble
