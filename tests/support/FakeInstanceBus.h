#pragma once

#include "Platform/InstanceBus.h"

namespace nubble {

// A bus on which this program is alone.
class FakeInstanceBus : public InstanceBus {
public:
    [[nodiscard]] bool isConnected() const override { return true; }
    [[nodiscard]] bool claim(QObject *) override { return true; }
    void release() override { ++releases; }

    int releases = 0;
};

} // namespace nubble
