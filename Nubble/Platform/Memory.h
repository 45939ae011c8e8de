#pragma once

namespace nubble {

// Gives memory that was freed back to the system, for the C library keeps it. Takes some milliseconds: for
// the moment when a window with much in it has been hidden. Any thread; does nothing where the library
// cannot.
void releaseFreedMemory();

} // namespace nubble
