#include "Review/ReviewParsing.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <iterator>
#include <limits>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr qsizetype longestDate = 64; // characters

bool isDigit(QChar each)
{
    return each >= u'0' && each <= u'9';
}

QString withoutFractions(const QString &text)
{
    QString kept;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const bool begins = text[at] == u'.' && at + 1 < text.size() && isDigit(text[at + 1]);
        if (!begins)
            kept.append(text[at]);
        while (begins && at + 1 < text.size() && isDigit(text[at + 1]))
            ++at;
    }
    return kept;
}

// In the form, a 0 stands for any digit and a + for either sign.
bool hasForm(QStringView text, QStringView form)
{
    return std::ranges::equal(text, form, [](QChar each, QChar wanted) {
        if (wanted == u'0')
            return isDigit(each);
        return wanted == u'+' ? each == u'+' || each == u'-' : each == wanted;
    });
}

bool isInternetDateTime(QStringView text)
{
    constexpr QStringView local = u"0000-00-00T00:00:00";
    if (text.size() < local.size() || !hasForm(text.first(local.size()), local))
        return false;
    const QStringView zone = text.sliced(local.size());
    return zone == u"Z" || hasForm(zone, u"+00:00") || hasForm(zone, u"+0000");
}

// A number that is written as 3.5, 1e300 or "3" is no integer.
std::optional<qint64> integerIn(const QJsonObject &object, QLatin1String key)
{
    constexpr qint64 none = std::numeric_limits<qint64>::min();
    const qint64 found = object.value(key).toInteger(none);
    return found == none ? std::nullopt : std::optional(found);
}

std::optional<qint64> integerIn(const QJsonObject &object, QLatin1String key, qint64 least, qint64 most)
{
    const std::optional<qint64> found = integerIn(object, key);
    return found && *found >= least && *found <= most ? found : std::nullopt;
}

std::optional<QJsonObject> objectIn(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

QuenwickItem itemOf(const QJsonObject &object)
{
    return {
        .guid = object.value("guid"_L1).toString(),
        .source = object.value("source"_L1).toString(),
        .who = object.value("who"_L1).toString(),
        .title = object.value("title"_L1).toString(),
        .text = object.value("text"_L1).toString(),
        .due = parseDate(object.value("due_at"_L1).toString()),
        .timeKnown = object.value("time_known"_L1).toBool(),
        .onCalendar = object.value("on_calendar"_L1).toBool()};
}

} // namespace

std::optional<QDateTime> parseDate(QString text)
{
    if (text.size() > longestDate)
        return std::nullopt;
    text = withoutFractions(text);
    if (!isInternetDateTime(text))
        return std::nullopt;
    const QDateTime date = QDateTime::fromString(text, Qt::ISODate);
    return date.isValid() ? std::optional(date.toUTC()) : std::nullopt;
}

QString shortHandle(const QString &text)
{
    constexpr int fewestOfANumber = 7;
    constexpr int shown = 4;
    if (text.contains(u'@'))
        return text;
    const auto all = text.toUcs4();
    QList<char32_t> digits;
    std::ranges::copy_if(all, std::back_inserter(digits), [](char32_t each) { return QChar::isDigit(each); });
    if (digits.size() < fewestOfANumber)
        return text;
    return u'…' + QString::fromUcs4(digits.last(shown).constData(), shown);
}

QString firstCharacters(const QString &text, int count)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (int i = 0; i < count; ++i)
        if (finder.toNextBoundary() < 0)
            return text;
    return text.first(finder.position());
}

std::optional<LiveState> parseLiveState(const QByteArray &json)
{
    const QJsonObject object = objectIn(json).value_or(QJsonObject());
    const auto port = integerIn(object, "port"_L1, 1, std::numeric_limits<quint16>::max());
    const auto pid = integerIn(object, "pid"_L1, 1, std::numeric_limits<qint32>::max());
    if (!port || !pid)
        return std::nullopt;
    return LiveState{static_cast<quint16>(*port), static_cast<pid_t>(*pid)};
}

std::optional<Inbox> parseInbox(const QByteArray &json)
{
    const std::optional<QJsonObject> object = objectIn(json);
    if (!object)
        return std::nullopt;
    constexpr qint64 most = std::numeric_limits<int>::max();
    const qint64 pending = integerIn(*object, "pending"_L1).value_or(0);
    Inbox inbox{.pending = static_cast<int>(std::clamp<qint64>(pending, 0, most)), .items = {}};
    const QJsonArray items = object->value("items"_L1).toArray();
    for (const QJsonValue each : items)
        if (const QJsonObject item = each.toObject(); item.value("guid"_L1).isString())
            inbox.items.append(itemOf(item));
    return inbox;
}

std::optional<QuenwickAnswer> parseAnswer(const QByteArray &json)
{
    const std::optional<QJsonObject> object = objectIn(json);
    if (!object)
        return std::nullopt;
    const QJsonValue error = object->value("error"_L1);
    return QuenwickAnswer{
        .error = error.isString() ? std::optional(error.toString()) : std::nullopt,
        .added = integerIn(*object, "added"_L1).value_or(0),
        .how = object->value("how"_L1).toString()};
}

} // namespace nubble
