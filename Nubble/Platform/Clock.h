#pragma once

#include <chrono>

class QDateTime;

namespace nubble {

// A point of wall-clock time.
using TimePoint = std::chrono::sys_time<std::chrono::milliseconds>;

// The milliseconds since 1970 that a foreign record claims: held within some 30 000 years, so that no span
// between two points overflows. Pure.
[[nodiscard]] TimePoint timePointOf(double msecsSinceEpoch);
[[nodiscard]] QDateTime localTime(TimePoint time); // in the user's time zone

// Wall-clock time, handed to whoever measures spans so that a test can move it. Any thread.
class Clock {
public:
    virtual ~Clock();
    [[nodiscard]] virtual TimePoint now() const = 0;
};

class SystemClock : public Clock {
public:
    [[nodiscard]] TimePoint now() const override;
};

} // namespace nubble
