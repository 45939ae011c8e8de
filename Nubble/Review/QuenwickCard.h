#pragma once

#include "Widgets/Card.h"

namespace nubble {

class Clock;
class DesktopPreferences;
class QuenwickMonitor;

// The card "inbox". All that it is made from outlives it.
[[nodiscard]] Card quenwickCard(
    QuenwickMonitor &quenwick, const Clock &clock, const DesktopPreferences &preferences);

} // namespace nubble
