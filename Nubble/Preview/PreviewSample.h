#pragma once

#include <QLatin1String>
#include <QList>

#include "Meeting/MeetingState.h"
#include "Placement/NotchEdge.h"
#include "Review/ReviewState.h"
#include "Sessions/SessionMonitor.h"
#include "Usage/PlanWindow.h"

namespace nubble {

// What one picture shows: the panel with one card open, everything in a certain state. A plain value.
struct PreviewSample {
    QLatin1String card;  // its name
    QLatin1String state; // in words; names the picture, too
    NotchEdge edge = NotchEdge::Right;
    bool isFocused = false; // the keyboard is in the card
    double panelScale = 1;

    SessionsSample sessions{};
    PlanWindows usage{};
    std::optional<QString> usageProblem{};
    bool isUsageOld = false;
    MeetingState meeting{};
    float level = 0; // of the microphone
    ReviewState review{};

    [[nodiscard]] QString fileName(int scale) const; // "sessions-many@2x.png"
};

// The samples' clock stands still: the morning of a Thursday, UTC.
[[nodiscard]] TimePoint previewTime();
[[nodiscard]] QDateTime previewDateTime();

// In the order of the contact sheet; those of a card stand together.
[[nodiscard]] QList<PreviewSample> previewSamples();

// The pieces of that.
[[nodiscard]] QList<PreviewSample> sessionSamples();
[[nodiscard]] QList<PreviewSample> usageSamples();
[[nodiscard]] QList<PreviewSample> meetingSamples();
[[nodiscard]] QList<PreviewSample> reviewSamples();
[[nodiscard]] SessionsSample usualSessions();
[[nodiscard]] PlanWindows usualUsage();
[[nodiscard]] ReviewState usualReview();

} // namespace nubble
