#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <stop_token>
#include <variant>

#include "Shell/Command.h"
#include "Usage/CacheScan.h"
#include "Usage/Reading.h"

namespace nubble {

struct ReadOutcome {
    std::variant<Reading, ReadProblem> result;
    std::optional<QList<QByteArray>> entries; // the usage entries, when the cache folder was listed for them
};

struct ReaderPace {
    CommandLimits decompression{.output = 16'777'216, .time = std::chrono::seconds(10)};
    std::chrono::milliseconds secondLook{150}; // an entry being written is whole again by then
};

// Reads the newest usage answer out of the desktop application's HTTP cache. Blocks and starts child
// processes: for a worker, one call at a time.
class PlanUsageReader {
public:
    using FindTool = std::function<std::optional<QString>()>;

    // `findZstd` is asked at each read.
    PlanUsageReader(
        const QString &cacheFolder, const QString &domain, FindTool findZstd, ReaderPace pace = {});

    // Looks into the entries `known` first; lists the folder only when none of them gives a reading.
    [[nodiscard]] ReadOutcome read(const QList<QByteArray> &known, const std::stop_token &stop = {});

private:
    ReadOutcome attempt(const QList<QByteArray> &known, const QString &zstd, const std::stop_token &stop);
    std::optional<Reading> newestReading(
        const QList<QByteArray> &entries, const QString &zstd, const std::stop_token &stop);
    std::optional<Reading> readingOf(
        const QByteArray &entry, const QString &zstd, const std::stop_token &stop);
    QByteArray decompressed(QByteArrayView body, const QString &zstd, const std::stop_token &stop) const;
    void note(const QByteArray &what, const char *obstacle);
    bool missesLast(const ReadOutcome &outcome) const;

    CacheScan m_scan;
    QByteArray m_domain;
    FindTool m_findZstd;
    ReaderPace m_pace;
    std::optional<Reading> m_last;
    QHash<QByteArray, const char *> m_obstacles; // for the log, by what they are an obstacle to
};

} // namespace nubble
