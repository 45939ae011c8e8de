#pragma once

#include <array>
#include <span>

#include "Platform/Clock.h"

namespace nubble {

// How loud it is and has been: a smoothed level, and a history of the loudest values of 80 ms each. All
// values are 0 to 1. A plain value.
class LevelMeter {
public:
    static constexpr std::size_t barCount = 64;
    using Bars = std::array<float, barCount>;

    explicit LevelMeter(TimePoint now) : m_lastBar(now) { }
    [[nodiscard]] static LevelMeter preview(float level); // a made-up one, for pictures

    // 0 at 55 dB below full scale, 1 at 15 dB below it.
    [[nodiscard]] static float valueOf(std::span<const float> samples); // at least one

    [[nodiscard]] float level() const { return m_level; }
    [[nodiscard]] const Bars &bars() const { return m_bars; } // oldest first

    bool take(float value, TimePoint now); // whether that has made a bar
    void reset();

    bool operator==(const LevelMeter &) const = default;

private:
    float m_level = 0;
    Bars m_bars{};
    float m_peak = 0; // since the last bar
    TimePoint m_lastBar;
};

} // namespace nubble
