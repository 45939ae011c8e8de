#pragma once

#include <optional>

namespace nubble {

// Pictures of every card in every state, from built-in samples, drawn without a display: for people to look
// at, and for the test that notices when one changes. Fonts, clock, time zone and language are fixed, and
// nothing of the user's is read or written, so that each run draws the same, byte for byte.
namespace RenderPreview {

// Whether the program was started as `nubble --render-quenwick [FOLDER]`; then that is done, and the result
// is its exit status. To be called before anything else: it makes a process for each scale.
[[nodiscard]] std::optional<int> runIfAsked(int argc, char *argv[]);

} // namespace RenderPreview

} // namespace nubble
