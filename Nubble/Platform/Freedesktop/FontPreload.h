#pragma once

#include <thread>

namespace nubble {

// Reads the font configuration of the system beside whatever else goes on until this object ends: the first
// text that is measured would wait for it, and it is the longest single piece of a start. Does nothing where
// there is no fontconfig.
class FontPreload {
public:
    FontPreload();

private:
    std::jthread m_thread;
};

} // namespace nubble
