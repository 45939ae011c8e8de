#include "Platform/Memory.h"

#include <cstdlib>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace nubble {

void releaseFreedMemory()
{
#ifdef __GLIBC__
    ::malloc_trim(0);
#endif
}

} // namespace nubble
