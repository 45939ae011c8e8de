#include "Platform/Linux/LinuxProcessTable.h"

#include <csignal>

namespace nubble {

bool LinuxProcessTable::canSignal(pid_t pid) const
{
    // 0 and negative ids would address process groups, and succeed.
    return pid > 0 && ::kill(pid, 0) == 0;
}

} // namespace nubble
