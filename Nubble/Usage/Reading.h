#pragma once

#include <QByteArray>

#include "Platform/Clock.h"
#include "Usage/PlanWindow.h"

namespace nubble {

// What one usage answer in the cache says; at least one of the windows is there.
struct Reading {
    QByteArray entry; // path of the file, as the file system spells it
    PlanWindows windows;
    TimePoint capturedAt; // when the file was last written

    bool operator==(const Reading &) const = default;
};

enum class ReadProblem {
    NoCache,    // no usage answer in the cache, or no cache
    NoZstd,     // nothing to decompress with
    Unreadable, // there are answers, but none that can be understood
};

} // namespace nubble
