#pragma once

#include "Platform/Clock.h"

namespace nubble {

// A clock that a test moves by hand.
class ManualClock : public Clock {
public:
    [[nodiscard]] TimePoint now() const override { return m_now; }
    void advance(std::chrono::milliseconds span) { m_now += span; }

private:
    TimePoint m_now{std::chrono::seconds(1'790'000'000)}; // 2026-09-21
};

} // namespace nubble
