#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include "Search/ChatRecords.h"

class QDateTime;

namespace nubble {

// What the search's window says. Pure; any thread.

// The words and phrases that a query looks for, and what was searched in the place of some of them: without
// the filters of the index ("in:code", "cat:Work"), what is excluded, and the operators.
[[nodiscard]] QStringList searchedWords(
    const QString &query, const QMap<QString, QStringList> &corrected = {});

// A date as people say it ("Yesterday", "Monday", "4 March 2025"), in local time; one that is no date comes
// as it is.
[[nodiscard]] QString dateText(const QString &updated, const QDateTime &now);

[[nodiscard]] QString metaText(const ChatHit &hit, const QDateTime &now);
[[nodiscard]] QString matchText(qsizetype hit, qsizetype count); // "3 of 7", for `hit` from 0

// What opening it does, and the name of the symbol that stands for that; no text when there is nothing to
// open.
[[nodiscard]] QString openText(const ChatTarget &target);
[[nodiscard]] QString openSymbol(const ChatTarget &target);

// Foreign text as it can stand on one line: without what breaks it, or turns its neighbours' direction. What
// never fits is cut off.
[[nodiscard]] QString singleLine(const QString &text);

// A chat's title so, or what stands for one.
[[nodiscard]] QString titleText(const QString &title);

} // namespace nubble
