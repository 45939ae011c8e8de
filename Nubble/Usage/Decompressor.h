#pragma once

#include <QByteArray>

#include <chrono>
#include <optional>
#include <stop_token>

namespace nubble {

struct DecompressionLimits {
    qint64 output = 16'777'216;             // bytes
    std::chrono::milliseconds time{10'000}; // for the whole run
};

// Runs `zstd` (an absolute path) on the bytes and gives what it wrote. Its exit status means nothing: it
// complains about whatever follows the first frame, after it has written that frame out. Absent when it
// cannot be started, writes nothing, or is ended because of a limit or of `stop`. Blocks, up to the time
// limit; needs no event loop; any thread.
[[nodiscard]] std::optional<QByteArray> decompress(
    const QString &zstd, QByteArrayView compressed, const DecompressionLimits &limits = {},
    const std::stop_token &stop = {});

} // namespace nubble
