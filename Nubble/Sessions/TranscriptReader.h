#pragma once

#include <QByteArray>

#include <optional>

#include "Sessions/FileCosts.h"
#include "Sessions/SessionDetail.h"
#include "Sessions/TranscriptLines.h"

namespace nubble {

class RegularFile;

// Reads one transcript: at first its end, at most 8 MiB of it, then what has been appended since. A line
// without its line break is left for the next read. Blocks; one thread at a time.
class TranscriptReader {
public:
    // Brings the detail up to date. False when the file could not be read.
    bool read(const QByteArray &path, FileCosts &costs);

    [[nodiscard]] bool hasRead() const { return m_offset.has_value(); }
    [[nodiscard]] SessionDetail detail() const; // all of it

private:
    [[nodiscard]] bool readTail(const RegularFile &file, FileCosts &costs);
    void take(TranscriptValues newer, const RegularFile &file);
    [[nodiscard]] bool readAppended(const RegularFile &file, FileCosts &costs);

    std::optional<qint64> m_offset; // everything before it has been looked at
    TranscriptValues m_values;
    TimePoint m_grewAt;
    TimePoint m_endedAt; // when what it ends with was new
};

} // namespace nubble
