#pragma once

#include <QList>
#include <QSet>

#include "Review/QuenwickItem.h"

namespace nubble {

// What waits, as the database or the live interface tells it.
struct Inbox {
    int pending = 0;             // with a date or without
    QList<QuenwickItem> items{}; // those with a date that are to be shown

    bool operator==(const Inbox &) const = default;
};

// All that the review inbox shows. A plain value.
struct ReviewState {
    Inbox inbox{};
    bool live = false;                    // Quenwick's interface answered the last poll
    bool installed = false;               // Quenwick's database is there
    bool checking = false;                // Quenwick is looking for new messages
    QSet<QString> busy{};                 // the ids of the items that are being decided
    std::optional<QString> lastMessage{}; // what became of the last action or search

    bool operator==(const ReviewState &) const = default;
};

} // namespace nubble
