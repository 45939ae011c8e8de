#include "Meeting/LevelMeter.h"

#include <algorithm>
#include <cmath>

using namespace std::chrono_literals;

namespace nubble {

LevelMeter LevelMeter::preview(float level)
{
    LevelMeter meter{TimePoint()};
    meter.m_level = level;
    for (std::size_t i = 0; level > 0 && i < barCount; ++i) {
        const auto x = static_cast<float>(i);
        const float wave = (std::sin(2.7F * x) + std::sin(5.3F * x)) * 0.25F + 0.5F;
        meter.m_bars.at(i) = std::min(1.0F, wave * level * std::max(0.0F, std::sin(x / 5.5F) + 0.35F));
    }
    return meter;
}

float LevelMeter::valueOf(std::span<const float> samples)
{
    constexpr std::size_t lanes = 4; // are summed up apart, which the compiler does in one instruction
    std::array<float, lanes> sums{};
    const std::size_t whole = samples.size() - samples.size() % lanes;
    for (std::size_t i = 0; i < whole; i += lanes)
        for (std::size_t lane = 0; lane < lanes; ++lane)
            sums[lane] += samples[i + lane] * samples[i + lane];
    for (std::size_t i = whole; i < samples.size(); ++i)
        sums[0] += samples[i] * samples[i];
    const float meanSquare = (sums[0] + sums[1] + sums[2] + sums[3]) / static_cast<float>(samples.size());
    const float audible = std::max(1e-10F, meanSquare); // in this order: no number counts as silence
    return std::clamp((10 * std::log10(audible) + 55) / 40, 0.0F, 1.0F);
}

bool LevelMeter::take(float value, TimePoint now)
{
    const float factor = value > m_level ? 0.5F : 0.12F; // up quickly, down slowly
    m_level += factor * (value - m_level);
    m_peak = std::max(m_peak, value);
    const auto age = now - m_lastBar;
    if (age >= 0ms && age < 80ms) // below 0, the clock was put back
        return false;
    std::rotate(m_bars.begin(), m_bars.begin() + 1, m_bars.end());
    m_bars.back() = m_peak;
    m_peak = 0;
    m_lastBar = now;
    return true;
}

void LevelMeter::reset()
{
    m_level = 0;
    m_peak = 0;
    m_bars = {};
}

} // namespace nubble
