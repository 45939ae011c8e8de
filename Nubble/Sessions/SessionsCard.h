#pragma once

#include "Widgets/Card.h"

namespace nubble {

class Clock;
class ProcessActivator;
class SessionMonitor;

// The card "sessions". All that it is made from outlives it.
[[nodiscard]] Card sessionsCard(SessionMonitor &monitor, ProcessActivator &activator, const Clock &clock);

} // namespace nubble
