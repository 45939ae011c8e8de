#pragma once

#include "Platform/ProcessTable.h"

namespace nubble {

class LinuxProcessTable : public ProcessTable {
public:
    [[nodiscard]] bool canSignal(pid_t pid) const override;
};

} // namespace nubble
