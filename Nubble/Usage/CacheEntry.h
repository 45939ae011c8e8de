#pragma once

#include <QByteArrayView>

#include <optional>

namespace nubble {

// One file of the desktop application's HTTP cache: a header of 24 bytes with the key's length, the key
// (which holds the address that was asked), the answer's body, then records that are of no interest here.
// Pure functions of bytes that may be cut or made up anywhere; the views they return point into their
// argument.
namespace CacheEntry {

inline constexpr qint64 headerSize = 24;     // no file up to this size is an entry
inline constexpr qint64 sizeLimit = 524'288; // no file from this size on is a usage answer

[[nodiscard]] std::optional<QByteArrayView> keyOf(QByteArrayView bytes); // UTF-8

// Whether the key is that of a request for an organisation's usage: …/api/organizations/ID/usage at `domain`.
[[nodiscard]] bool isUsageKey(QByteArrayView key, QByteArrayView domain);

// From the start of the body, if that is a zstd frame, to the end of the bytes: where the body ends is not
// written anywhere but in the frame itself.
[[nodiscard]] std::optional<QByteArrayView> compressedBodyOf(QByteArrayView bytes);

} // namespace CacheEntry

} // namespace nubble
