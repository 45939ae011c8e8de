#include "Preview/PreviewSample.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

using Phase = MeetingState::Phase;

const QString link = u"https://docs.google.com/document/d/1a2b3c4d5e/edit?tab=t.7x2k"_s;

MeetingState recording()
{
    return {
        .phase = Phase::Recording,
        .link = link,
        .tabTitle = u"Team weekly, March 12"_s,
        .status = u"Notes written: 3 decisions, 5 tasks"_s,
        .startedAt = previewTime() - 24min - 7s,
        .lastUpdate = previewTime() - 4min,
        .nextUpdate = previewTime() + 65s};
}

MeetingState with(void (*change)(MeetingState &))
{
    MeetingState state = recording();
    change(state);
    return state;
}

} // namespace

QList<PreviewSample> meetingSamples()
{
    QList<PreviewSample> samples;
    const auto add = [&](QLatin1String state, const MeetingState &meeting, float level = 0) {
        samples.append(
            {.card = "notes"_L1,
             .state = state,
             .usage = usualUsage(),
             .meeting = meeting,
             .level = level,
             .review = usualReview()});
    };
    add("off"_L1, {});
    add("linked"_L1, {.link = link, .status = u"Link set. Press Start when the meeting begins."_s});
    add("recording"_L1, recording(), 0.8F);
    add("silent"_L1, recording());
    add("updating"_L1, with([](MeetingState &state) {
            state.updating = true;
            state.status = u"Transcribing and writing the Doc now…"_s;
        }),
        0.4F);
    add("finishing"_L1, with([](MeetingState &state) {
            state.phase = Phase::Finishing;
            state.status = u"Finishing — last transcription and notes pass…"_s;
        }));
    add("elsewhere"_L1, {.link = link, .others = {48123, 48190}});
    add("long texts"_L1, with([](MeetingState &state) {
            state.phase = Phase::Idle;
            state.startedAt.reset();
            state.tabTitle = u"Quarterly planning with everybody who has ever had an opinion on it"_s;
            state.status = u"Couldn't start: the transcription service answered "_s
                + u"/usr/lib/node_modules/recorder/lib/transcription/providers/default/connection.js:1189 "
                  "ECONNREFUSED while the previous notes were still being written; nothing has been lost, "
                  "and what was recorded so far is kept beside the script for the next time"_s;
        }));
    add("larger"_L1, recording(), 0.8F);
    samples.last().panelScale = 1.4;
    return samples;
}

} // namespace nubble
