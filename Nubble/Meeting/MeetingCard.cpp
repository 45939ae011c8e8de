#include "Meeting/MeetingCard.h"

#include "Meeting/MeetingNotesCardContent.h"

using namespace Qt::StringLiterals;

namespace nubble {

Card meetingCard(MeetingNotes &notes, const Clock &clock)
{
    return {
        .name = "notes"_L1,
        .makeContent = [&notes, &clock](
                           const CardRoom &room) { return new MeetingNotesCardContent(notes, clock, room); },
        .refresh = {},
    };
}

} // namespace nubble
