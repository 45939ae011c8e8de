#pragma once

#include "Platform/Clock.h"

namespace nubble {

// A clock that a test moves by hand.
class ManualClock : public Clock {
public:
    [[nodiscard]] qint64 msecsSinceEpoch() const override { return m_now; }
    void advance(qint64 msecs) { m_now += msecs; }

private:
    qint64 m_now = 1'790'000'000'000; // 2026-09-21
};

} // namespace nubble
