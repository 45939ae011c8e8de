#pragma once

#include <QString>

#include <chrono>

#include "Meeting/MeetingState.h"

namespace nubble {

// A meeting's recording in words. Pure.

[[nodiscard]] bool isDocTabLink(const QString &link); // of one tab of a document
[[nodiscard]] bool isDocLink(const QString &link);    // of a document, whichever tab

[[nodiscard]] QString phaseName(MeetingState::Phase phase); // "idle"
[[nodiscard]] QString phaseWord(const MeetingState &state); // the same, but "off" or "external"
[[nodiscard]] QString docLabel(const MeetingState &state);
[[nodiscard]] QString statusText(const MeetingState &state); // in one line; may be long, may be empty
[[nodiscard]] QString linkHint(const MeetingState &state);   // empty when there is nothing to say, as below
[[nodiscard]] QString othersHint(const MeetingState &state);
[[nodiscard]] QString pidList(const QList<pid_t> &pids); // "812, 913"

[[nodiscard]] QString clockText(std::chrono::seconds span);                 // "59:59", "1:00:05"
[[nodiscard]] QString timingText(const MeetingState &state, TimePoint now); // up to two lines
[[nodiscard]] QString hearingText(float level);                             // under the wave
[[nodiscard]] QString buttonHelp(const MeetingState &state);                // of the panel's button

} // namespace nubble
