#pragma once

#include <QtGlobal>

namespace nubble {

// What looking at transcripts has cost so far, for those who measure it.
struct FileCosts {
    qint64 attributeReads = 0;
    qint64 listings = 0;
    qint64 opens = 0;
    qint64 bytes = 0;

    bool operator==(const FileCosts &) const = default;
};

} // namespace nubble
