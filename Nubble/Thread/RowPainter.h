#pragma once

#include <QPoint>

#include <optional>

#include "Thread/ThreadLayout.h"
#include "Thread/ThreadTargets.h"

class QPainter;

namespace nubble {

// How a row is to look apart from what it says.
struct RowLook {
    TextRange selected;
    std::optional<ThreadTarget> hovered;
    std::optional<ThreadTarget> focused; // by the keyboard
    std::optional<ThreadTarget> copied;  // just now
    bool showsCopyReply = false;
    bool isCurrent = false; // its message
};

// Draws the row with its corner at `corner`. Decides nothing.
void paintRow(
    QPainter &painter, const QPoint &corner, const ThreadRows &rows, int index, const ThreadLayout::Row &row,
    const RowLook &look);

} // namespace nubble
