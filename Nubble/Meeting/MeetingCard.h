#pragma once

#include "Widgets/Card.h"

namespace nubble {

class Clock;
class MeetingNotes;

// The card "notes". All that it is made from outlives it.
[[nodiscard]] Card meetingCard(MeetingNotes &notes, const Clock &clock);

} // namespace nubble
