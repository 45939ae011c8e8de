#include "Usage/UsageJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

// A real answer has a few kilobytes; the parser takes some thirty times the size of a hostile one.
constexpr qsizetype largestAnswer = 1'048'576;

std::optional<QDateTime> dateOf(const QJsonValue &value)
{
    // A time without its offset from UTC would be taken for local time. Fractional seconds may be there or
    // not.
    const QDateTime date = QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
    if (!date.isValid() || date.timeSpec() == Qt::LocalTime)
        return std::nullopt;
    return date.toUTC();
}

std::optional<PlanWindow> windowOf(const QJsonObject &object, const QString &percentKey)
{
    const QJsonValue percent = object.value(percentKey);
    if (!percent.isDouble() || !std::isfinite(percent.toDouble()))
        return std::nullopt;
    return PlanWindow{percent.toDouble() / 100, dateOf(object.value(u"resets_at"_s))};
}

PlanWindows windowsInLimits(const QJsonArray &limits)
{
    PlanWindows windows;
    for (const QJsonValue each : limits) {
        const QJsonObject limit = each.toObject();
        const QString kind = limit.value(u"kind"_s).toString();
        const auto window = windowOf(limit, u"percent"_s);
        if (window && kind == u"session")
            windows.session = window;
        else if (window && kind == u"weekly_all")
            windows.weekly = window;
    }
    return windows;
}

} // namespace

std::optional<PlanWindows> parseUsageJson(const QByteArray &json)
{
    if (json.size() > largestAnswer)
        return std::nullopt;
    const QJsonObject usage = QJsonDocument::fromJson(json).object();
    PlanWindows windows = windowsInLimits(usage.value(u"limits"_s).toArray());
    if (!windows.session)
        windows.session = windowOf(usage.value(u"five_hour"_s).toObject(), u"utilization"_s);
    if (!windows.weekly)
        windows.weekly = windowOf(usage.value(u"seven_day"_s).toObject(), u"utilization"_s);
    return windows == PlanWindows{} ? std::nullopt : std::optional(windows);
}

} // namespace nubble
