#include "Platform/Freedesktop/FontPreload.h"

#include <dlfcn.h>

namespace nubble {

namespace {

// Loaded by name: the toolkit's platform plugin does so too, a little later, and nothing else of it is needed
// here.
void readConfiguration()
{
    void *library = ::dlopen("libfontconfig.so.1", RTLD_LAZY);
    if (!library)
        return;
    if (void *initialize = ::dlsym(library, "FcInit"))
        reinterpret_cast<int (*)()>(initialize)();
}

} // namespace

FontPreload::FontPreload() : m_thread(readConfiguration) { }

} // namespace nubble
