#include "Search/ChatTexts.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <array>

#include "Shell/OneLine.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

constexpr std::array filters{u"in:", u"cat:", u"tag:", u"is:", u"after:", u"before:"};
constexpr std::array operators{u"AND", u"OR", u"NOT"};

// Apart at white space, which quotation marks keep together.
QStringList tokens(const QString &query)
{
    QStringList result{QString()};
    bool isQuoted = false;
    for (const QChar each : query) {
        if (each == u'"')
            isQuoted = !isQuoted;
        if (each.isSpace() && !isQuoted)
            result.append(QString());
        else
            result.last() += each;
    }
    return result;
}

bool isWord(const QString &token)
{
    const auto begins = [&](const char16_t *filter) {
        return token.startsWith(QStringView(filter), Qt::CaseInsensitive);
    };
    return !token.startsWith(u'-') && std::none_of(filters.begin(), filters.end(), begins)
        && std::find(operators.begin(), operators.end(), token) == operators.end();
}

QString withoutSyntax(QString token)
{
    return token.removeIf([](QChar each) { return QStringView(u"\"()*").contains(each); }).trimmed();
}

QString todayText(const QDateTime &at, bool hasTime)
{
    return hasTime ? u"Today "_s + QLocale::c().toString(at.time(), u"HH:mm") : u"Today"_s;
}

} // namespace

QStringList searchedWords(const QString &query, const QMap<QString, QStringList> &corrected)
{
    QStringList words;
    for (const QString &token : tokens(query))
        if (isWord(token))
            words.append(withoutSyntax(token));
    for (const QStringList &replacements : corrected)
        words.append(replacements);
    words.removeAll(QString());
    words.removeDuplicates();
    return words;
}

QString dateText(const QString &updated, const QDateTime &now)
{
    constexpr qsizetype dateLength = 10; // 2025-03-04
    QString text = singleLine(updated);
    const bool hasTime = text.size() > dateLength;
    QDateTime at = QDateTime::fromString(QString(text).replace(u' ', u'T'), Qt::ISODate);
    if (!hasTime)
        at = QDate::fromString(text, Qt::ISODate).startOfDay();
    if (!at.isValid())
        return text;
    at = at.toLocalTime();
    const QDate day = at.date();
    const qint64 ago = day.daysTo(now.date());
    if (ago == 0)
        return todayText(at, hasTime);
    if (ago == 1)
        return u"Yesterday"_s;
    const bool isOfThisWeek = ago > 1 && ago < 7;
    const bool isOfThisYear = day.year() == now.date().year();
    return QLocale::c().toString(
        day,
        isOfThisWeek       ? u"dddd"_s
            : isOfThisYear ? u"d MMMM"_s
                           : u"d MMMM yyyy"_s);
}

QString metaText(const ChatHit &hit, const QDateTime &now)
{
    QStringList parts{singleLine(hit.project), singleLine(hit.category), dateText(hit.updated, now)};
    parts.removeAll(QString());
    parts.removeDuplicates(); // many a project is called as its category is
    for (QString &part : parts)
        part = QChar(0x2068) + part + QChar(0x2069); // whichever way one is written, the others stay in place
    return parts.join(u"  ·  "_s);
}

QString matchText(qsizetype hit, qsizetype count)
{
    return count == 0 ? QString() : u"%1 of %2"_s.arg(hit + 1).arg(count);
}

QString openText(const ChatTarget &target)
{
    if (!target.resume.isEmpty())
        return u"Resume in a terminal"_s;
    return target.link.isEmpty() ? QString() : u"Open this chat"_s;
}

QString openSymbol(const ChatTarget &target)
{
    return target.resume.isEmpty() ? u"arrow.up.right"_s : u"terminal"_s;
}

QString titleText(const QString &title)
{
    const QString line = singleLine(title);
    return line.isEmpty() ? u"Untitled"_s : line;
}

QString singleLine(const QString &text)
{
    constexpr qsizetype longest = 600;
    QString line = oneLine(text.left(longest));
    if (line.size() > 0 && line.back().isHighSurrogate())
        line.chop(1);
    return line;
}

} // namespace nubble
