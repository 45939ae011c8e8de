#pragma once

#include <QString>

#include <optional>

namespace nubble {

// What a session's transcript tells about it; each on one line, never empty.
struct SessionDetail {
    std::optional<QString> title;
    std::optional<QString> lastPrompt;
    std::optional<QString> question{};

    bool operator==(const SessionDetail &) const = default;
};

} // namespace nubble
