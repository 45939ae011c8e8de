#pragma once

#include <QList>
#include <QString>

#include <optional>
#include <sys/types.h>

#include "Platform/Clock.h"

namespace nubble {

// Where a meeting's recording stands. A plain value.
struct MeetingState {
    enum class Phase { Idle, Recording, Finishing }; // of the recorder that the program has started

    Phase phase = Phase::Idle;
    QString link;                      // of the document's tab that the notes go into; may be anything
    std::optional<QString> tabTitle{}; // as the recorder tells it
    QString status{};                  // one line, partly in the recorder's words
    std::optional<TimePoint> startedAt{};
    std::optional<TimePoint> lastUpdate{}; // when notes have been written last
    std::optional<TimePoint> nextUpdate{}; // when the recorder means to write the next ones
    bool updating = false;                 // it is writing some
    QList<pid_t> others{};                 // recorders that the program has not started

    [[nodiscard]] bool isRunning() const { return phase != Phase::Idle || !others.isEmpty(); }
    bool operator==(const MeetingState &) const = default;
};

} // namespace nubble
