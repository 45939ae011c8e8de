#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

namespace nubble {

// One review that waits in Quenwick: a message with a date in it that may go on the calendar. A plain value.
struct QuenwickItem {
    QString guid{};
    QString source{}; // where the message came from, as Quenwick calls it
    QString who{};    // sender or thread; of a phone number the last digits only
    QString title{};  // empty when Quenwick is closed
    QString text{};   // the message's, or the beginning of it
    std::optional<QDateTime> due{};
    bool timeKnown = false; // `due` has a time of day that means something
    bool onCalendar = false;

    [[nodiscard]] QString id() const { return source + u':' + guid; }

    bool operator==(const QuenwickItem &) const = default;
};

} // namespace nubble
