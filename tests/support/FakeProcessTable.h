#pragma once

#include <QMap>
#include <QSet>

#include "Platform/ProcessTable.h"

namespace nubble {

// The processes that a test says are alive.
class FakeProcessTable : public ProcessTable {
public:
    [[nodiscard]] bool canSignal(pid_t pid) const override { return alive.contains(pid); }
    [[nodiscard]] std::optional<ProcessInfo> find(pid_t pid) const override
    {
        return known.contains(pid) ? std::optional(known.value(pid)) : std::nullopt;
    }
    [[nodiscard]] QByteArray environment(pid_t pid) const override { return environments.value(pid); }
    void signal(pid_t, quint64, int) const override { }

    QSet<pid_t> alive;
    QMap<pid_t, ProcessInfo> known;
    QMap<pid_t, QByteArray> environments;
};

} // namespace nubble
