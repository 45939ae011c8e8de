#pragma once

#include <QString>
#include <QTextCursor>

#include "Thread/BlockDocument.h"

namespace nubble {

class ThreadLayout;
class ThreadRows;

// A place in the rendered text.
struct ThreadPosition {
    int row = 0;
    int offset = 0; // in the row's document

    bool operator==(const ThreadPosition &) const = default;
    bool operator<(const ThreadPosition &other) const
    {
        return row < other.row || (row == other.row && offset < other.offset);
    }
};

// What is marked: from where it began to where it has been drawn. Places stay true while a text grows.
struct ThreadSelection {
    ThreadPosition anchor;
    ThreadPosition cursor;

    [[nodiscard]] bool isEmpty() const { return anchor == cursor; }
    [[nodiscard]] ThreadPosition first() const { return std::min(anchor, cursor); }
    [[nodiscard]] ThreadPosition last() const { return std::max(anchor, cursor); }
    // What of a row's document is marked; `end` is its last position.
    [[nodiscard]] TextRange inRow(int row, int end) const;
};

// Places in the text that is laid out.
namespace ThreadPositions {

[[nodiscard]] ThreadPosition at(const ThreadRows &rows, ThreadLayout &layout, const QPoint &point);
[[nodiscard]] ThreadPosition end(const ThreadRows &rows, ThreadLayout &layout);
[[nodiscard]] ThreadPosition held(const ThreadRows &rows, ThreadLayout &layout, ThreadPosition position);
[[nodiscard]] ThreadPosition moved(
    const ThreadRows &rows, ThreadLayout &layout, ThreadPosition position,
    QTextCursor::MoveOperation operation);
// The word or the paragraph around a place.
[[nodiscard]] ThreadSelection around(
    ThreadLayout &layout, ThreadPosition position, QTextCursor::SelectionType type);
[[nodiscard]] QRect caret(ThreadLayout &layout, ThreadPosition position); // from the row's corner
// What is marked, as plain text. More than a few hundred rows come as they were written, for nobody waits
// until all of them are laid out.
[[nodiscard]] QString text(const ThreadRows &rows, ThreadLayout &layout, const ThreadSelection &selection);

} // namespace ThreadPositions

} // namespace nubble
