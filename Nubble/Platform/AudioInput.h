#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <span>

namespace nubble {

// While it lives, the input is listened to. Once it is destroyed, which takes milliseconds, nobody is called
// any more. Not to be destroyed from within a call.
class AudioStream {
public:
    virtual ~AudioStream() = default;
};

// The default sound source of the user's desktop, whichever that is at the time.
class AudioInput {
public:
    static constexpr std::size_t bufferFrames = 1024;

    // Both are called on a thread of the stream's, and must not block.
    struct Receiver {
        std::function<void(std::span<const float>)> buffer; // its first channel, bufferFrames samples
        // Nothing is heard any more, or at all, until a buffer comes; the stream tries again by itself. It is
        // told once until then, and why, which is empty when there just is no source.
        std::function<void(const QString &why)> failed;
    };

    virtual ~AudioInput() = default;
    [[nodiscard]] virtual std::unique_ptr<AudioStream> listen(Receiver receiver) = 0; // never waits
};

} // namespace nubble
