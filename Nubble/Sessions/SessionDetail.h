#pragma once

#include <QString>

#include <optional>

#include "Platform/Clock.h"

namespace nubble {

// What a session does, by its transcript.
struct TranscribedWork {
    TimePoint since; // the last line that tells
    TimePoint until; // from when on it does nothing, unless more is written

    bool operator==(const TranscribedWork &) const = default;
};

// What a session's transcript tells about it; each on one line, never empty.
struct SessionDetail {
    std::optional<QString> title;
    std::optional<QString> lastPrompt;
    std::optional<QString> question{};     // of Claude, that the user has not answered
    std::optional<TranscribedWork> work{}; // of sessions that may not tell it themselves

    bool operator==(const SessionDetail &) const = default;
};

} // namespace nubble
