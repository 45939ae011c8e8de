#include "Meeting/RecorderLine.h"

#include <QRegularExpression>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

// By Unicode: the recorder's clock has a narrow no-break space before the AM.
QString withoutClockTime(QString line)
{
    static const QRegularExpression clockTime(
        u"^\\d{1,2}:\\d{2}:\\d{2}\\s*[AP]M\\s+"_s, QRegularExpression::UseUnicodePropertiesOption);
    return !line.isEmpty() && line.front().isDigit() ? line.remove(clockTime) : line;
}

std::optional<QString> tabTitleIn(const QString &line)
{
    static const QRegularExpression tab(u"tab \"([^\"]+)\""_s);
    if (!line.contains("tab \""_L1))
        return std::nullopt; // as nearly always, and quicker
    const QRegularExpressionMatch match = tab.match(line);
    return match.hasMatch() ? std::optional(match.captured(1)) : std::nullopt;
}

std::optional<TimePoint> pointIn(const QString &msecs)
{
    static const QRegularExpression decimal(u"\\A[+-]?[0-9]+(\\.[0-9]+)?\\z"_s);
    return decimal.match(msecs).hasMatch() ? std::optional(timePointOf(msecs.toDouble())) : std::nullopt;
}

// The recorder puts a space behind "updated:"; whatever stands there is left out.
QString updatedStatus(const QString &line)
{
    const QString rest = line.sliced(QLatin1String("updated:").size());
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, rest);
    const qsizetype second = std::max<qsizetype>(0, characters.toNextBoundary());
    return u"Updated "_s + rest.sliced(second).replace(u'-', u' ');
}

std::optional<QString> statusIn(const QString &line)
{
    static constexpr std::array silent{"notes unchanged"_L1, "no speech"_L1, "tab "_L1, "  "_L1};
    static constexpr auto connected = "writing as "_L1;
    static constexpr auto error = "error: "_L1;
    const auto begins = [&line](QLatin1String each) { return line.startsWith(each); };
    if (std::any_of(silent.begin(), silent.end(), begins))
        return std::nullopt;
    if (begins("updated:"_L1))
        return updatedStatus(line);
    if (begins("recording"_L1))
        return u"Recording — first notes in about 3 minutes."_s;
    if (begins("resuming"_L1))
        return u"Resumed this tab's earlier recording."_s;
    if (begins(connected))
        return u"Connected as "_s + line.sliced(connected.size()) + u'.';
    if (begins(error))
        return line.sliced(error.size());
    return line;
}

bool endsPass(const QString &line)
{
    static constexpr std::array ends{
        "updated:"_L1, "notes unchanged"_L1, "no speech"_L1, "pass failed"_L1, "done."_L1};
    return std::any_of(
        ends.begin(), ends.end(), [&line](QLatin1String each) { return line.startsWith(each); });
}

} // namespace

RecorderReport readRecorderLine(QString line)
{
    static constexpr auto next = "next "_L1;
    line = withoutClockTime(std::move(line));
    RecorderReport report{.tabTitle = tabTitleIn(line)};
    if (line.startsWith(next))
        report.nextUpdate = pointIn(line.sliced(next.size()));
    if (report.nextUpdate)
        return report;
    if (line == "pass"_L1) {
        report.updating = true;
        return report;
    }
    if (endsPass(line))
        report.updating = false;
    report.hasUpdated = line.startsWith("updated:"_L1);
    report.status = statusIn(line);
    return report;
}

} // namespace nubble
