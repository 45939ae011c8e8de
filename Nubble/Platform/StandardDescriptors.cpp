#include "Platform/StandardDescriptors.h"

#include <fcntl.h>
#include <unistd.h>

namespace nubble {

void openStandardDescriptors()
{
    int lowest = 0;
    while (lowest >= 0 && lowest <= STDERR_FILENO)
        lowest = ::open("/dev/null", O_RDWR); // the lowest that is free
    if (lowest > STDERR_FILENO)
        ::close(lowest);
}

} // namespace nubble
