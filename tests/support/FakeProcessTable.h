#pragma once

#include <QSet>

#include "Platform/ProcessTable.h"

namespace nubble {

// The processes that a test says are alive.
class FakeProcessTable : public ProcessTable {
public:
    [[nodiscard]] bool canSignal(pid_t pid) const override { return alive.contains(pid); }

    QSet<pid_t> alive;
};

} // namespace nubble
