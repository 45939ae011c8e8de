#pragma once

#include "Platform/TerminationSignals.h"

namespace nubble {

// SIGTERM and SIGINT.
class LinuxTerminationSignals : public TerminationSignals {
    Q_OBJECT

public:
    LinuxTerminationSignals();
    ~LinuxTerminationSignals() override;
};

} // namespace nubble
