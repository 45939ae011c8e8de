#include "Preview/PreviewSample.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

QuenwickItem item(
    const QString &who, const QString &title, const QString &text, int days, std::optional<QTime> time = {})
{
    return {
        .guid = who + title,
        .source = u"messages"_s,
        .who = who,
        .title = title,
        .text = text,
        .due = QDateTime(previewDateTime().date().addDays(days), time.value_or(QTime(12, 0)), Qt::UTC),
        .timeKnown = time.has_value()};
}

ReviewState stateOf(const QList<QuenwickItem> &items, int more = 0)
{
    return {
        .inbox = {.pending = static_cast<int>(items.size()) + more, .items = items},
        .live = true,
        .installed = true};
}

QList<QuenwickItem> usualItems()
{
    QList<QuenwickItem> items{
        item(
            u"Grace"_s, u"Lunch with Grace"_s, u"Are you free for lunch today? The usual place, half past."_s,
            0, QTime(12, 30)),
        item(u"4411"_s, u"Parcel pick-up"_s, u"Your parcel waits until tomorrow evening."_s, 1),
        item(
            u"Studio Nord"_s, u"Review of the drafts"_s,
            u"Could we go through the drafts on Monday at nine?"_s, 4, QTime(9, 0)),
    };
    items[1].onCalendar = true;
    return items;
}

ReviewState closed()
{
    ReviewState state = stateOf(usualItems(), 2);
    state.live = false;
    for (QuenwickItem &each : state.inbox.items)
        each.title.clear();
    return state;
}

ReviewState decided()
{
    ReviewState state = stateOf(usualItems());
    state.busy.insert(state.inbox.items.first().id());
    state.checking = true;
    state.lastMessage = u"Added to Google Calendar"_s;
    return state;
}

ReviewState mixed()
{
    QList<QuenwickItem> items{
        item(u"Alan"_s, u"Rent"_s, u"The rent was due yesterday."_s, -1),
        item(u"Edsger"_s, u"Call back"_s, u"Call back"_s, 0, QTime(9, 15))};
    items.append(item(u"Barbara"_s, u"Dinner some day"_s, u"We should have dinner some day."_s, 0));
    items.last().due.reset();
    return stateOf(items);
}

ReviewState many()
{
    QList<QuenwickItem> items;
    for (int i = 0; i < 12; ++i)
        items.append(item(
            u"Sender %1"_s.arg(i + 1), u"Appointment %1"_s.arg(i + 1), u"Would that day suit you?"_s, i / 2,
            QTime(8 + i, 0)));
    return stateOf(items, 30);
}

ReviewState longTexts()
{
    return stateOf({
        item(
            u"The parents' association of the school by the old harbour"_s,
            u"Meeting about everything that has been put off since last summer, with all who were there"_s,
            u"Dear all, as nobody answered the first three messages, here is the fourth one, which repeats "
            "them in full and adds the minutes of the last meeting, the one before, and the plan of the hall."_s,
            0, QTime(19, 30)),
        item(
            u"donaudampfschifffahrtsgesellschaft@example.org"_s, u"Kapitänspatentverlängerungstermin"_s,
            u"https://example.org/appointments/2026/03/13/confirm?token=8f14e45fceea167a5a36dedd4bea2543"_s,
            1),
    });
}

ReviewState rightToLeft()
{
    return stateOf({
        item(
            u"ليلى"_s, u"موعد عند الطبيب مع الأطفال بعد المدرسة"_s,
            u"هل يمكنك أن تأخذ الأطفال إلى الطبيب يوم السبت في الساعة العاشرة صباحا؟"_s, 2, QTime(10, 0)),
        item(u"נועה"_s, u"פגישה"_s, u"נפגש ב-Studio Nord ביום ראשון?"_s, 3),
    });
}

} // namespace

ReviewState usualReview()
{
    return stateOf(usualItems());
}

QList<PreviewSample> reviewSamples()
{
    QList<PreviewSample> samples;
    const auto add = [&](QLatin1String state, const ReviewState &review) -> PreviewSample & {
        samples.append({.card = "inbox"_L1, .state = state, .usage = usualUsage(), .review = review});
        return samples.last();
    };
    add("open"_L1, usualReview());
    add("keyboard"_L1, usualReview()).isFocused = true;
    add("closed"_L1, closed());
    add("deciding"_L1, decided());
    add("late and undated"_L1, mixed());
    add("many"_L1, many());
    add("long texts"_L1, longTexts());
    add("right to left"_L1, rightToLeft());
    add("none dated"_L1, stateOf({}, 3));
    add("all clear"_L1, stateOf({}));
    add("all clear and closed"_L1, {.installed = true});
    add("left edge"_L1, usualReview()).edge = NotchEdge::Left;
    add("top edge"_L1, usualReview()).edge = NotchEdge::Top;
    add("bottom edge"_L1, usualReview()).edge = NotchEdge::Bottom;
    add("larger"_L1, decided()).panelScale = 1.4;
    return samples;
}

} // namespace nubble
