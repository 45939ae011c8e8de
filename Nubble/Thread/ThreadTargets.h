#pragma once

#include <QRect>
#include <QUrl>

#include <optional>

namespace nubble {

class ThreadLayout;
class ThreadRows;

// Something in the text that can be clicked, or reached with Tab.
struct ThreadTarget {
    enum class Kind { Link, CopyCode, CopyReply };

    Kind kind = Kind::Link;
    int row = 0;
    int link = 0; // which of the row's

    bool operator==(const ThreadTarget &) const = default;
};

// Finds them: those of a row stand in the order in which they are reached.
namespace ThreadTargets {

[[nodiscard]] QList<ThreadTarget> ofRow(const ThreadRows &rows, ThreadLayout &layout, int row);
[[nodiscard]] std::optional<ThreadTarget> at(
    const ThreadRows &rows, ThreadLayout &layout, const QPoint &point);
// The nearest one from `row` on; `step` is 1 or -1. Gives up behind many rows that only look as if.
[[nodiscard]] std::optional<ThreadTarget> from(
    const ThreadRows &rows, ThreadLayout &layout, int row, int step);
[[nodiscard]] std::optional<ThreadTarget> next(
    const ThreadRows &rows, ThreadLayout &layout, const ThreadTarget &target, int step);
[[nodiscard]] QList<QRect> rects(ThreadLayout &layout, const ThreadTarget &target); // from the row's corner
[[nodiscard]] QUrl url(ThreadLayout &layout, const ThreadTarget &target);           // none for a button

} // namespace ThreadTargets

} // namespace nubble
