#pragma once

#include "Sessions/RunState.h"
#include "Widgets/Palette.h"

namespace nubble {

[[nodiscard]] inline QColor colorOf(RunState state)
{
    switch (state) {
    case RunState::Waiting:
        return Palette::badge;
    case RunState::Working:
        return Palette::bronze;
    case RunState::Completed:
        return Palette::ample;
    case RunState::Idle:
        break;
    }
    return Palette::textSecondary;
}

} // namespace nubble
