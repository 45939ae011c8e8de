#pragma once

#include "Platform/AudioInput.h"

namespace nubble {

// The sound server of nearly every desktop: PulseAudio, and PipeWire in its stead. Each stream has a
// connection and a thread of its own, and connects again when the server has been started anew. Where the
// default source changes, the server moves the stream.
class PulseAudioInput : public AudioInput {
public:
    [[nodiscard]] std::unique_ptr<AudioStream> listen(Receiver receiver) override;
};

} // namespace nubble
