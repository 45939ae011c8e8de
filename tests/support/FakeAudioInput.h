#pragma once

#include "Platform/AudioInput.h"

namespace nubble {

// A microphone that hears what a test gives it.
class FakeAudioInput : public AudioInput {
public:
    [[nodiscard]] std::unique_ptr<AudioStream> listen(Receiver given) override
    {
        receiver = std::move(given);
        ++streams;
        return std::make_unique<Stream>(*this);
    }

    Receiver receiver;
    int streams = 0; // that live

private:
    struct Stream : AudioStream {
        explicit Stream(FakeAudioInput &input) : owner(input) { }
        ~Stream() override { --owner.streams; }
        Q_DISABLE_COPY_MOVE(Stream)

        FakeAudioInput &owner;
    };
};

} // namespace nubble
