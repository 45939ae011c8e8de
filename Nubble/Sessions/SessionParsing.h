#pragma once

#include <QByteArray>

#include <optional>

#include "Sessions/ClaudeSession.h"

namespace nubble {

// The record that `json` holds. None when a required key is missing or any of the nine that all versions
// write has the wrong type; other keys do not matter. Pure; any thread.
[[nodiscard]] std::optional<ClaudeSession> decodeSession(const QByteArray &json);

} // namespace nubble
