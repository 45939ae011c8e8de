#pragma once

namespace nubble {

// Opens those of standard input, output and error that are closed on the null device, so that no file of ours
// is taken for one of them. To be called before anything else is opened.
void openStandardDescriptors();

} // namespace nubble
