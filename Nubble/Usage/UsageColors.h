#pragma once

#include "Panel/Palette.h"
#include "Usage/UsageTexts.h"

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
