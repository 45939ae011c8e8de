#pragma once

#include <QString>

#include <optional>

#include "Platform/Clock.h"

namespace nubble {

// What one line of the recorder's output tells; what is absent stays as it was.
struct RecorderReport {
    std::optional<QString> tabTitle{};
    std::optional<TimePoint> nextUpdate{};
    std::optional<bool> updating{};
    bool hasUpdated = false; // notes have been written just now
    std::optional<QString> status{};

    bool operator==(const RecorderReport &) const = default;
};

// `line` is without its end and the blanks around it. Pure.
[[nodiscard]] RecorderReport readRecorderLine(QString line);

} // namespace nubble
