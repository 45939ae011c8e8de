#pragma once

#include "Usage/UsageTexts.h"
#include "Widgets/Palette.h"

namespace nubble {

[[nodiscard]] inline QColor colorOf(UsageLevel level)
{
    switch (level) {
    case UsageLevel::Ample:
        return Palette::ample;
    case UsageLevel::Watch:
        return Palette::watch;
    case UsageLevel::Critical:
        break;
    }
    return Palette::critical;
}

} // namespace nubble
