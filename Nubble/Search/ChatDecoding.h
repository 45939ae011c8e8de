#pragma once

#include <QByteArray>

#include <optional>

#include "Search/ChatRecords.h"

namespace nubble {

// Reads what the chat index prints as JSON. One key that is missing or of another type than it should be
// spoils the whole answer, but for the three optional ones, which may be null. Any thread; takes some 10 ms a
// megabyte.
[[nodiscard]] std::optional<SearchResponse> decodeSearch(const QByteArray &json);
[[nodiscard]] std::optional<QList<ChatCategory>> decodeCategories(const QByteArray &json);

// Its matches are places that there are.
[[nodiscard]] std::optional<ChatThread> decodeThread(const QByteArray &json);

} // namespace nubble
