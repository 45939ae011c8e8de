#include "Usage/UsageTexts.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace nubble {

int percentOf(double fraction)
{
    constexpr double binaryError = 1e-9; // 29 of 100 comes back as 28.999…
    return std::isnan(fraction) ? 0 : static_cast<int>(std::clamp(fraction, 0.0, 1.0) * 100 + binaryError);
}

QString percentText(int percent)
{
    return QString::number(percent) + u"% Used";
}

UsageLevel levelOf(int percent)
{
    if (percent >= 70)
        return UsageLevel::Critical;
    return percent >= 50 ? UsageLevel::Watch : UsageLevel::Ample;
}

QString resetText(const std::optional<QDateTime> &resetsAt, const QDateTime &now)
{
    if (!resetsAt)
        return {};
    const qint64 minutes = std::max<qint64>(now.msecsTo(*resetsAt), 0) / 60'000;
    if (minutes < 60)
        return u"Resets in %1 min"_s.arg(minutes);
    if (minutes < 1440)
        return u"Resets in %1 hr %2 min"_s.arg(minutes / 60).arg(minutes % 60);
    // English whatever the user's language, like the words around it.
    return u"Resets "_s + QLocale::c().toString(resetsAt->toLocalTime(), u"ddd h:mm AP");
}

QString problemText(ReadProblem problem, const std::optional<QString> &installCommand)
{
    switch (problem) {
    case ReadProblem::NoCache:
        return u"Open the Claude app to load plan usage"_s;
    case ReadProblem::NoZstd:
        return u"Install zstd"_s + (installCommand ? u" ("_s + *installCommand + u')' : QString())
            + u" to read plan usage";
    case ReadProblem::Unreadable:
        break;
    }
    return u"Couldn't read Claude's usage cache"_s;
}

QString staleText(std::chrono::milliseconds age)
{
    return u"Updated %1 min ago — open Claude to refresh"_s.arg(
        std::chrono::duration_cast<std::chrono::minutes>(age).count());
}

} // namespace nubble
