#pragma once

#include <sys/types.h>

namespace nubble {

// The kernel's processes, by id. Any thread.
class ProcessTable {
public:
    virtual ~ProcessTable() = default;

    // Whether a null signal reaches the process: it lives and belongs to this user. Ids below 1 name no
    // process.
    [[nodiscard]] virtual bool canSignal(pid_t pid) const = 0;
};

} // namespace nubble
