#pragma once

#include "Platform/ProcessTable.h"

namespace nubble {

// Reads the proc file system.
class LinuxProcessTable : public ProcessTable {
public:
    [[nodiscard]] bool canSignal(pid_t pid) const override;
    [[nodiscard]] std::optional<ProcessInfo> find(pid_t pid) const override;
    [[nodiscard]] QByteArray environment(pid_t pid) const override;
    void signal(pid_t pid, quint64 birth, int number) const override;
};

} // namespace nubble
