#include <QDateTime>

#include "Preview/PreviewSample.h"
#include "Usage/UsageTexts.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace nubble {

namespace {

PlanWindows windows(double session, double weekly)
{
    const QDateTime now = previewDateTime();
    return {
        .session = PlanWindow{session, now.addSecs(154 * 60)},
        .weekly = PlanWindow{weekly, now.addDays(3).addSecs(96 * 60)}};
}

} // namespace

PlanWindows usualUsage()
{
    return windows(0.31, 0.18);
}

QList<PreviewSample> usageSamples()
{
    QList<PreviewSample> samples;
    const auto add = [&](QLatin1String state, const PlanWindows &usage, std::optional<QString> problem = {}) {
        samples.append(
            {.card = "usage"_L1,
             .state = state,
             .usage = usage,
             .usageProblem = std::move(problem),
             .review = usualReview()});
    };
    add("ample"_L1, usualUsage());
    add("watch"_L1, windows(0.58, 0.4));
    add("critical"_L1, windows(1, 0.74));
    add("no reading"_L1, {}, problemText(ReadProblem::NoCache));
    add("no zstd"_L1, {}, problemText(ReadProblem::NoZstd, u"sudo apt install zstd"_s));
    add("session only"_L1, {.session = PlanWindow{0.07, {}}, .weekly = {}});
    add("old"_L1, windows(0.42, 0.55), staleText(95min));
    samples.last().isUsageOld = true;
    add("smaller"_L1, usualUsage());
    samples.last().panelScale = 0.8;
    return samples;
}

} // namespace nubble
