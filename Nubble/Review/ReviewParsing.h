#pragma once

#include <QByteArray>

#include <sys/types.h>

#include "Review/ReviewState.h"

namespace nubble {

// What Quenwick writes and answers. Pure; whatever is no such thing gives nothing.

// An ISO 8601 time with its offset from UTC; fractions of a second are dropped.
[[nodiscard]] std::optional<QDateTime> parseDate(QString text);

// A phone number is told by its last four digits; names and addresses stay as they are.
[[nodiscard]] QString shortHandle(const QString &text);

[[nodiscard]] QString firstCharacters(const QString &text, int count); // as people count them

// Where a running Quenwick says that it answers.
struct LiveState {
    quint16 port = 0; // on the loopback, not 0
    pid_t pid = 0;    // above 0

    bool operator==(const LiveState &) const = default;
};
[[nodiscard]] std::optional<LiveState> parseLiveState(const QByteArray &json);

[[nodiscard]] std::optional<Inbox> parseInbox(const QByteArray &json);

// The answer to a request to do something.
struct QuenwickAnswer {
    std::optional<QString> error; // for people
    qint64 added = 0;             // new messages
    QString how;                  // the calendar that took the item

    bool operator==(const QuenwickAnswer &) const = default;
};
[[nodiscard]] std::optional<QuenwickAnswer> parseAnswer(const QByteArray &json);

} // namespace nubble
