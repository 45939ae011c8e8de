#pragma once

#include <optional>

#include "Thread/ThreadSelection.h"

namespace nubble {

// Where what the layout lights stands first in a message, as it is shown. Reads the message's source, and
// lays out only where that promises something; gives up where too much of it holds less than it promised,
// such as addresses behind links.
[[nodiscard]] std::optional<ThreadPosition> firstMatch(
    const ThreadRows &rows, ThreadLayout &layout, int message);

} // namespace nubble
