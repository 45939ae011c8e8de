#pragma once

#include <QStringList>

#include "Review/ReviewParsing.h"

namespace nubble {

// What the review inbox says. Pure; "today" is the day of `now` in the user's time zone.

// A due time in a word, and in full: "Thu", "Thu Nov 19 9:30 AM".
namespace NextDue {
[[nodiscard]] QString inShort(const std::optional<QDateTime> &due, const QDateTime &now);
[[nodiscard]] QString inFull(const std::optional<QDateTime> &due, bool timeKnown, const QDateTime &now);
// The soonest of them, which a live list need not begin with.
[[nodiscard]] std::optional<QDateTime> of(const QList<QuenwickItem> &items);
} // namespace NextDue

// Items that stand under one header.
struct DayGroup {
    QString label;
    bool soon = false; // today or tomorrow
    QList<QuenwickItem> items;

    bool operator==(const DayGroup &) const = default;
};
// In the items' own order: a day may come twice.
[[nodiscard]] QList<DayGroup> dayGroups(const QList<QuenwickItem> &items, const QDateTime &now);

[[nodiscard]] QString quoteOf(const QuenwickItem &item); // empty when there is nothing to quote
[[nodiscard]] QString initialOf(const QString &name);    // for the sender's avatar

// What the user can have done to an item.
enum class ReviewAction { Approve, Dismiss, Calendar };
[[nodiscard]] QString actionName(ReviewAction action);
[[nodiscard]] QString actionSymbol(ReviewAction action);
[[nodiscard]] QString actionHelp(ReviewAction action, bool live);
// In the place of the calendar's button.
[[nodiscard]] QString onCalendarText();
[[nodiscard]] QString onCalendarSymbol();

// What became of it; without an answer, what was asked for is taken to be done until the next poll knows
// better.
[[nodiscard]] QString describe(ReviewAction action, const std::optional<QuenwickAnswer> &answer);
[[nodiscard]] QString scanText(const std::optional<QuenwickAnswer> &answer);
[[nodiscard]] QString handOverText();
[[nodiscard]] QString unansweredText();

// The card's own texts.
[[nodiscard]] QString closedText();                        // while Quenwick is not live
[[nodiscard]] QString countText(const ReviewState &state); // behind the number of what waits
[[nodiscard]] bool isAllClear(const ReviewState &state);   // nothing waits, nothing is listed
[[nodiscard]] QStringList allClearTexts();                 // a headline, and a line below it
[[nodiscard]] QStringList footerTexts(const ReviewState &state);
[[nodiscard]] QString refreshHelp();
[[nodiscard]] QString openText();

} // namespace nubble
