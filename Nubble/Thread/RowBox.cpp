#include "Thread/RowBox.h"

#include <QImage>
#include <QTextBlock>

#include <algorithm>
#include <cmath>

#include "Thread/BlockDocument.h"

namespace nubble::RowBoxes {

namespace {

constexpr int bubblePaddingX = 12;
constexpr int bubblePaddingY = 8;
constexpr int codePaddingX = 12;
constexpr int codePaddingY = 10;
constexpr int codeHeader = 30;
constexpr int captionHeight = 20;
constexpr int actions = 28; // below a reply
constexpr QSize largestPicture(200, 120);
constexpr QSize copyCodeSize(72, 22);
constexpr QSize copyReplySize(24, 24);

int gapWithinReply(const Block &before, const Block &block)
{
    if (block.continues)
        return 0;
    if (block.kind == Block::Kind::Heading)
        return block.level <= 2 ? 20 : 16;
    if (before.kind == Block::Kind::Heading)
        return 7;
    const bool isItem = block.depth > 0 && before.depth > 0 && block.quotes == before.quotes
        && block.kind == Block::Kind::Paragraph && before.kind == Block::Kind::Paragraph;
    if (isItem && block.marker != Block::Marker::None)
        return 5;
    return block.kind == Block::Kind::Rule || before.kind == Block::Kind::Rule ? 16 : 11;
}

int gapAbove(const ThreadRows &rows, const ThreadRows::Message &message, int row)
{
    if (message.firstRow != row)
        return message.isReply() ? gapWithinReply(rows.block(row - 1), rows.block(row)) : 0;
    return row == 0 ? 14 : message.isReply() ? 16 : 8;
}

int replyWidth(const Block &block, int viewWidth)
{
    const int padding = block.kind == Block::Kind::Code ? codePaddingX : 0;
    return std::max(60, viewWidth - 2 * side - indent(block) - 2 * padding);
}

int bubbleWidth(int viewWidth)
{
    return std::max(80, (viewWidth - 2 * side) * 84 / 100);
}

RowBox questionBox(const ThreadRows &rows, int row, BlockDocument &document, int viewWidth)
{
    RowBox box;
    const ThreadMessage &message = rows.messageAt(row).content;
    const bool isOnly = rows.isFirst(row) && rows.isLast(row);
    const int right = viewWidth - side;
    int y = gapAbove(rows, rows.messageAt(row), row);
    if (rows.isFirst(row) && !message.picture.isNull()) {
        const QSizeF size = message.picture.size() / message.picture.devicePixelRatio();
        const QSize fitted = size.toSize().boundedTo(largestPicture) == size.toSize()
            ? size.toSize()
            : size.toSize().scaled(largestPicture, Qt::KeepAspectRatio);
        box.picture = QRect(QPoint(right - fitted.width(), y), fitted);
        y += fitted.height() + 6;
    }
    if (isOnly && message.text.isEmpty()) {
        box.text = {right, y};
    } else {
        document.setTextWidth(bubbleWidth(viewWidth) - 2 * bubblePaddingX);
        if (isOnly)
            document.setTextWidth(std::min(document.textWidth(), std::ceil(document.idealWidth()) + 1));
        const int width = static_cast<int>(document.textWidth()) + 2 * bubblePaddingX;
        const int above = rows.isFirst(row) ? bubblePaddingY : 0;
        const int below = rows.isLast(row) ? bubblePaddingY : 0;
        box.panel = QRect(right - width, y, width, above + document.height() + below);
        box.text = box.panel.topLeft() + QPoint(bubblePaddingX, above);
        y += box.panel.height();
    }
    if (rows.isLast(row) && !message.caption.isEmpty()) {
        box.caption = QRect(side, y + 2, right - side - 2, captionHeight);
        y += captionHeight;
    }
    box.height = y;
    return box;
}

void addCode(RowBox &box, const ThreadRows &rows, int row, int documentHeight, int viewWidth)
{
    const auto [first, end] = rows.parts(row);
    const int left = side + indent(rows.block(row));
    const int above = row == first ? codeHeader : 0;
    const int below = row + 1 == end ? codePaddingY : 0;
    box.panel = QRect(left, box.height, viewWidth - side - left, above + documentHeight + below);
    box.text = box.panel.topLeft() + QPoint(codePaddingX, above);
    if (row == first)
        box.copyCode =
            QRect(QPoint(box.panel.right() - copyCodeSize.width() - 3, box.panel.top() + 4), copyCodeSize);
    box.height += box.panel.height();
}

} // namespace

int indent(const Block &block)
{
    return std::min(block.depth, deepest) * listWidth + std::min(block.quotes, deepest) * quoteWidth;
}

bool isMirrored(const Block &block, const BlockDocument &document)
{
    return block.kind != Block::Kind::Code && block.kind != Block::Kind::Table
        && document.begin().textDirection() == Qt::RightToLeft;
}

int quoteLine(const Block &block)
{
    return side + std::min(block.outside, deepest) * listWidth;
}

int textWidth(const ThreadRows &rows, int row, int viewWidth)
{
    if (!rows.messageAt(row).isReply())
        return bubbleWidth(viewWidth) - 2 * bubblePaddingX;
    return replyWidth(rows.block(row), viewWidth);
}

RowBox make(const ThreadRows &rows, int row, BlockDocument &document, int viewWidth)
{
    if (!rows.messageAt(row).isReply())
        return questionBox(rows, row, document, viewWidth);
    RowBox box;
    box.height = gapAbove(rows, rows.messageAt(row), row);
    const bool mirrored = isMirrored(rows.block(row), document); // ends earlier instead of beginning later
    box.text = {side + (mirrored ? 0 : indent(rows.block(row))), box.height};
    const Block::Kind kind = rows.block(row).kind;
    if (kind == Block::Kind::Table)
        box.text.rx() -= static_cast<int>(BlockDocument::tablePadding);
    if (kind == Block::Kind::Code)
        addCode(box, rows, row, document.height(), viewWidth);
    else
        box.height += kind == Block::Kind::Rule ? 1 : document.height();
    if (rows.isLast(row)) {
        const int left = mirrored ? viewWidth - side - copyReplySize.width() + 5 : side - 5;
        box.copyReply = QRect(QPoint(left, box.height + 4), copyReplySize);
        box.height += actions;
    }
    return box;
}

QImage thumbnail(const QImage &picture)
{
    constexpr int sharpest = 3; // pixels to a point
    const QSize most = largestPicture * sharpest;
    if (picture.width() <= most.width() && picture.height() <= most.height())
        return picture;
    return picture.scaled(most, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

int estimate(const ThreadRows &rows, const ThreadRows::Message &message, int row, int viewWidth)
{
    constexpr double characterWidth = 6.6;
    constexpr int lineHeight = 20;
    const Block &block = rows.block(row);
    const int width =
        message.isReply() ? replyWidth(block, viewWidth) : bubbleWidth(viewWidth) - 2 * bubblePaddingX;
    const double perLine = std::max(8.0, width / characterWidth);
    const int lines = static_cast<int>(std::ceil(static_cast<double>(block.length) / perLine));
    const bool isCode = message.isReply() && block.kind == Block::Kind::Code && !block.continues;
    const int around = isCode ? codeHeader + codePaddingY : message.isReply() ? 0 : 2 * bubblePaddingY;
    const int below = message.isReply() && row + 1 == message.endRow ? actions : 0;
    return gapAbove(rows, message, row) + std::max(1, lines) * lineHeight + around + below;
}

} // namespace nubble::RowBoxes
