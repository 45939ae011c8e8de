#include "Review/ReviewTexts.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

// English whatever the user's language, like the words around it.
QString english(const QDateTime &time, const QString &format)
{
    return QLocale::c().toString(time.toLocalTime(), format);
}

qint64 daysUntil(const QDateTime &due, const QDateTime &now)
{
    return now.toLocalTime().date().daysTo(due.toLocalTime().date());
}

QString dayText(const QDateTime &due, const QDateTime &now)
{
    switch (daysUntil(due, now)) {
    case 0:
        return u"Today"_s;
    case 1:
        return u"Tomorrow"_s;
    default:
        return english(due, u"ddd MMM d"_s);
    }
}

QString labelOf(const QuenwickItem &item, const QDateTime &now)
{
    if (!item.due)
        return u"Undated"_s;
    return daysUntil(*item.due, now) < 0 ? u"Earlier"_s : dayText(*item.due, now);
}

bool isSoon(const QuenwickItem &item, const QDateTime &now)
{
    const qint64 days = item.due ? daysUntil(*item.due, now) : -1;
    return days == 0 || days == 1;
}

} // namespace

QString NextDue::inShort(const std::optional<QDateTime> &due, const QDateTime &now)
{
    if (!due)
        return u"—"_s;
    const qint64 days = daysUntil(*due, now);
    if (days == 0)
        return *due <= now ? u"Now"_s : u"Today"_s;
    if (days == 1)
        return u"Tmrw"_s;
    return days < 0 ? u"Due"_s : english(*due, u"ddd"_s);
}

QString NextDue::inFull(const std::optional<QDateTime> &due, bool timeKnown, const QDateTime &now)
{
    if (!due)
        return {};
    const QString day = dayText(*due, now);
    return timeKnown ? day + u' ' + english(*due, u"h:mm AP"_s) : day;
}

std::optional<QDateTime> NextDue::of(const QList<QuenwickItem> &items)
{
    std::optional<QDateTime> next;
    for (const QuenwickItem &each : items)
        if (each.due && (!next || *each.due < *next))
            next = each.due;
    return next;
}

QList<DayGroup> dayGroups(const QList<QuenwickItem> &items, const QDateTime &now)
{
    QList<DayGroup> groups;
    for (const QuenwickItem &each : items) {
        const QString label = labelOf(each, now);
        if (groups.isEmpty() || groups.last().label != label)
            groups.append({.label = label, .soon = isSoon(each, now), .items = {}});
        groups.last().items.append(each);
    }
    return groups;
}

QString quoteOf(const QuenwickItem &item)
{
    const QString text = item.text.trimmed();
    return text.compare(item.title, Qt::CaseInsensitive) == 0 ? QString() : text;
}

QString initialOf(const QString &name)
{
    for (const char32_t each : name.toUcs4())
        if (QChar::isLetter(each))
            return QString::fromUcs4(&each, 1).toUpper();
    return u"#"_s;
}

QString actionName(ReviewAction action)
{
    switch (action) {
    case ReviewAction::Approve:
        return u"Approve"_s;
    case ReviewAction::Dismiss:
        return u"Dismiss"_s;
    case ReviewAction::Calendar:
        break;
    }
    return u"Add to calendar…"_s;
}

QString actionSymbol(ReviewAction action)
{
    switch (action) {
    case ReviewAction::Approve:
        return u"checkmark"_s;
    case ReviewAction::Dismiss:
        return u"xmark"_s;
    case ReviewAction::Calendar:
        break;
    }
    return u"calendar.badge.plus"_s;
}

QString actionHelp(ReviewAction action, bool live)
{
    return live ? actionName(action) : actionName(action) + u" — open Quenwick first";
}

QString onCalendarText()
{
    return u"Already on your calendar"_s;
}

QString onCalendarSymbol()
{
    return u"checkmark.circle.fill"_s;
}

QString describe(ReviewAction action, const std::optional<QuenwickAnswer> &answer)
{
    if (answer && answer->error)
        return *answer->error;
    if (action == ReviewAction::Approve)
        return u"Approved"_s;
    if (action == ReviewAction::Dismiss)
        return u"Dismissed"_s;
    const QString how = answer ? answer->how : QString();
    if (how == u"google")
        return u"Added to Google Calendar"_s;
    return how == u"ics" ? u"Opened in your calendar — confirm to save"_s : u"Added to your calendar"_s;
}

QString scanText(const std::optional<QuenwickAnswer> &answer)
{
    if (answer && answer->error)
        return *answer->error;
    return answer && answer->added != 0 ? QString::number(answer->added) + u" new" : u"Up to date"_s;
}

QString handOverText()
{
    return u"Opening it in Quenwick"_s;
}

QString unansweredText()
{
    return u"Quenwick didn't answer — try again"_s;
}

QString closedText()
{
    return u"Quenwick is closed. Open it to approve or schedule."_s;
}

QString countText(const ReviewState &state)
{
    if (state.inbox.items.isEmpty())
        return u"to review, none dated"_s;
    return state.live ? u"waiting for review"_s : u"to review in Quenwick"_s;
}

bool isAllClear(const ReviewState &state)
{
    return state.inbox.pending == 0 && state.inbox.items.isEmpty();
}

QStringList allClearTexts()
{
    return {u"Nothing waiting on you"_s, u"All clear. New dates will show up here."_s};
}

QStringList footerTexts(const ReviewState &state)
{
    QStringList texts;
    if (state.inbox.pending > 0 && state.inbox.items.isEmpty())
        texts.append(u"Nothing dated coming up. The rest are in the app."_s);
    if (state.lastMessage)
        texts.append(*state.lastMessage);
    return texts;
}

QString refreshHelp()
{
    return u"Check for new messages"_s;
}

QString openText()
{
    return u"Open Quenwick"_s;
}

} // namespace nubble
