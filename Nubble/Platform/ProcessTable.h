#pragma once

#include <QString>

#include <optional>
#include <sys/types.h>

namespace nubble {

// A running process, as the kernel knows it.
struct ProcessInfo {
    QString name;                  // of its executable; its thread's where that cannot be read
    std::optional<pid_t> parent{}; // absent when that cannot be read
    bool isOrphan = false;         // its parent has gone before it
    quint64 birth = 0;             // tells it from a later process of the same id
    bool hasTerminal = false;      // a real one, or one that a program offers
    bool isContained = false;      // in a container, where processes have ids of their own

    bool operator==(const ProcessInfo &) const = default;
};

// The kernel's processes, by id. Ids below 1 name none. Any thread.
class ProcessTable {
public:
    virtual ~ProcessTable() = default;

    // Whether a null signal reaches the process: it lives and belongs to this user.
    [[nodiscard]] virtual bool canSignal(pid_t pid) const = 0;

    [[nodiscard]] virtual std::optional<ProcessInfo> find(pid_t pid) const = 0;

    // As it was when the process was started: "NAME=value", a null byte behind each, cut off at a megabyte.
    // Empty where that cannot be read. Foreign input, and private: for looking up single variables.
    [[nodiscard]] virtual QByteArray environment(pid_t pid) const = 0;

    // To that process and no other: nothing when it has ended, and its id is another's by now.
    virtual void signal(pid_t pid, quint64 birth, int number) const = 0;
};

} // namespace nubble
