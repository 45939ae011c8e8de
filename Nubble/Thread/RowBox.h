#pragma once

#include <QRect>

#include "Thread/ThreadRows.h"

class QImage;

namespace nubble {

class BlockDocument;

// Where the parts of a row are, from its own upper left corner; device-independent pixels. Pure.
struct RowBox {
    int height = 0; // with the space above it
    QPoint text;
    QRect panel;     // the bubble, or the block of code; grows over the edge to what continues it
    QRect picture;   // of a question
    QRect caption;   // below a question
    QRect copyCode;  // button
    QRect copyReply; // button
};

namespace RowBoxes {

inline constexpr int side = 18;       // between the view's edge and the text
inline constexpr int quoteWidth = 14; // that each quote takes
inline constexpr int listWidth = 20;  // that each list takes
inline constexpr int deepest = 7;     // that is shown; what is deeper stands below one another
inline constexpr int footerGap = 12;  // below the last row, and around the footer

[[nodiscard]] int indent(const Block &block); // of a reply's text
// Whether that is indented from the right, as what is written from there is.
[[nodiscard]] bool isMirrored(const Block &block, const BlockDocument &document);
// Where the line beside the outermost quote is, from that edge; the next ones follow, a `quoteWidth` apart.
[[nodiscard]] int quoteLine(const Block &block);
[[nodiscard]] int textWidth(const ThreadRows &rows, int row, int viewWidth);
// Fits the document of a question, too.
[[nodiscard]] RowBox make(const ThreadRows &rows, int row, BlockDocument &document, int viewWidth);
// What is kept of a question's picture.
[[nodiscard]] QImage thumbnail(const QImage &picture);
// About how tall the row, which is one of the message's, will be.
[[nodiscard]] int estimate(
    const ThreadRows &rows, const ThreadRows::Message &message, int row, int viewWidth);

} // namespace RowBoxes

} // namespace nubble
