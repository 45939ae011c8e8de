#include "Platform/Clock.h"

#include <QDateTime>

#include <cmath>

namespace nubble {

TimePoint timePointOf(double msecsSinceEpoch)
{
    constexpr double farthest = 1e15;
    const double held = std::fmax(std::fmin(msecsSinceEpoch, farthest), -farthest); // a number in any case
    return TimePoint(std::chrono::milliseconds(static_cast<std::chrono::milliseconds::rep>(held)));
}

QDateTime localTime(TimePoint time)
{
    return QDateTime::fromMSecsSinceEpoch(time.time_since_epoch().count());
}

Clock::~Clock() = default;

TimePoint SystemClock::now() const
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

} // namespace nubble
