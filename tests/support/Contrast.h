#pragma once

#include <QColor>

#include <algorithm>
#include <cmath>

namespace nubble {

// Both as WCAG 2 defines them.
inline double luminance(const QColor &color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

inline double contrast(const QColor &a, const QColor &b) // from 1 to 21
{
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

} // namespace nubble
