#include "Thread/ThreadSelection.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>
#include <QTextDocumentFragment>
#include <QTextTable>

#include <algorithm>

#include "Thread/ThreadLayout.h"
#include "Thread/ThreadRows.h"

using namespace Qt::StringLiterals;

namespace nubble {

TextRange ThreadSelection::inRow(int row, int end) const
{
    if (isEmpty() || row < first().row || row > last().row)
        return {};
    return {
        row == first().row ? std::min(first().offset, end) : 0,
        row == last().row ? std::min(last().offset, end) : end};
}

namespace ThreadPositions {

namespace {

constexpr int mostRendered = 256; // rows

QString markerText(const Block &block)
{
    const QString indent(std::max(0, block.depth - 1) * 2, u' ');
    switch (block.marker) {
    case Block::Marker::None:
        return {};
    case Block::Marker::Bullet:
        return indent + u"• ";
    case Block::Marker::Number:
        return indent + QString::number(block.number) + u". ";
    case Block::Marker::ToDo:
        return indent + u"☐ ";
    case Block::Marker::Done:
        return indent + u"☑ ";
    }
    return {};
}

// Between a row and the one before.
QString separator(const ThreadRows &rows, int row)
{
    const Block &block = rows.block(row);
    const Block &before = rows.block(row - 1);
    if (rows.messageOf(row) != rows.messageOf(row - 1))
        return u"\n\n"_s;
    if (block.continues) {
        // The cut may be in the middle of a line.
        const QString &text = rows.messageAt(row).content.text;
        const bool isLineEnd = text.mid(before.end(), block.start - before.end()).contains(u'\n');
        const bool isText = rows.messageAt(row).isReply() && block.kind == Block::Kind::Paragraph;
        if (isText) // which loses the space that it ends with
            return isLineEnd || text.at(block.start - 1).isSpace() ? u" "_s : QString();
        return isLineEnd ? u"\n"_s : QString();
    }
    return block.marker != Block::Marker::None && before.depth > 0 ? u"\n"_s : u"\n\n"_s;
}

// Cells of a row side by side, a tab between them.
QString tableText(const BlockDocument &document, const TextRange &range)
{
    QString text;
    const QTextTable &table = *document.table();
    for (QTextBlock block = document.findBlock(range.from); block.isValid() && block.position() <= range.to;
         block = block.next()) {
        const QTextTableCell cell = table.cellAt(block.position());
        if (!cell.isValid())
            continue;
        if (!text.isEmpty())
            text += cell.column() == 0 ? u'\n' : u'\t';
        const int from = std::max(range.from - block.position(), 0);
        const int to = std::min(range.to - block.position(), block.length() - 1);
        text += QStringView(block.text()).mid(from, std::max(0, to - from));
    }
    return text;
}

QString rendered(const ThreadRows &rows, ThreadLayout &layout, int row, const ThreadSelection &selection)
{
    BlockDocument &document = *layout.row(row).document;
    const TextRange range = selection.inRow(row, document.lastPosition());
    const QString marker =
        range.from == 0 && rows.messageAt(row).isReply() ? markerText(rows.block(row)) : u""_s;
    if (document.table())
        return tableText(document, range);
    QTextCursor cursor(&document);
    cursor.setPosition(range.from);
    cursor.setPosition(range.to, QTextCursor::KeepAnchor);
    return marker + cursor.selection().toPlainText();
}

QString written(const ThreadRows &rows, const ThreadSelection &selection)
{
    QStringList parts;
    const int lastMessage = rows.messageOf(selection.last().row);
    for (int i = rows.messageOf(selection.first().row); i <= lastMessage; ++i) {
        const ThreadRows::Message &message = rows.message(i);
        const QString &text = message.content.text;
        const bool isFirst = selection.first().row > message.firstRow;
        const bool isLast = selection.last().row + 1 < message.endRow;
        const qsizetype from = isFirst ? rows.block(selection.first().row).start : 0;
        const qsizetype to = isLast ? rows.block(selection.last().row).end() : text.size();
        parts.append(text.sliced(from, to - from));
    }
    return parts.join(u"\n\n"_s);
}

} // namespace

ThreadPosition at(const ThreadRows &rows, ThreadLayout &layout, const QPoint &point)
{
    const int row = layout.rowAt(point.y());
    if (row < 0)
        return {};
    if (point.y() >= layout.end())
        return end(rows, layout);
    const ThreadLayout::Row &laid = layout.row(row);
    const QPointF inText = point - QPoint(0, layout.yOf(row)) - laid.box.text;
    if (inText.y() < 0)
        return {row, 0};
    return held(rows, layout, {row, laid.document->documentLayout()->hitTest(inText, Qt::FuzzyHit)});
}

ThreadPosition end(const ThreadRows &rows, ThreadLayout &layout)
{
    const int last = rows.count() - 1;
    return last < 0 ? ThreadPosition{} : ThreadPosition{last, layout.row(last).document->lastPosition()};
}

ThreadPosition held(const ThreadRows &rows, ThreadLayout &layout, ThreadPosition position)
{
    if (position.row >= rows.count())
        return end(rows, layout);
    return {position.row, std::clamp(position.offset, 0, layout.row(position.row).document->lastPosition())};
}

ThreadPosition moved(
    const ThreadRows &rows, ThreadLayout &layout, ThreadPosition position,
    QTextCursor::MoveOperation operation)
{
    if (rows.count() == 0)
        return {};
    position = held(rows, layout, position);
    QTextCursor cursor(layout.row(position.row).document.get());
    cursor.setPosition(position.offset);
    if (cursor.movePosition(operation) && cursor.position() != position.offset)
        return {position.row, cursor.position()};
    const bool isForward = operation == QTextCursor::Down || operation == QTextCursor::NextCharacter
        || operation == QTextCursor::NextWord;
    const bool isBackward = operation == QTextCursor::Up || operation == QTextCursor::PreviousCharacter
        || operation == QTextCursor::PreviousWord;
    if (isForward && position.row + 1 < rows.count())
        return {position.row + 1, 0};
    if (isBackward && position.row > 0)
        return {position.row - 1, layout.row(position.row - 1).document->lastPosition()};
    return isForward ? end(rows, layout) : isBackward ? ThreadPosition{position.row, 0} : position;
}

ThreadSelection around(ThreadLayout &layout, ThreadPosition position, QTextCursor::SelectionType type)
{
    QTextCursor cursor(layout.row(position.row).document.get());
    cursor.setPosition(position.offset);
    cursor.select(type);
    if (type == QTextCursor::BlockUnderCursor) { // the toolkit's begins with the end of the one before
        cursor.setPosition(position.offset);
        cursor.movePosition(QTextCursor::StartOfBlock);
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    }
    return {{position.row, cursor.selectionStart()}, {position.row, cursor.selectionEnd()}};
}

QRect caret(ThreadLayout &layout, ThreadPosition position)
{
    const ThreadLayout::Row &row = layout.row(position.row);
    position.offset = std::clamp(position.offset, 0, row.document->lastPosition());
    const QTextBlock block = row.document->findBlock(position.offset);
    const QTextLine line = block.layout()->lineForTextPosition(position.offset - block.position());
    const QPointF origin = row.document->documentLayout()->blockBoundingRect(block).topLeft();
    const double x = line.isValid() ? line.cursorToX(position.offset - block.position()) : 0;
    const QRectF rect(x, line.isValid() ? line.y() : 0, 1, line.isValid() ? line.height() : 16);
    return rect.translated(origin).toAlignedRect().translated(row.box.text);
}

QString text(const ThreadRows &rows, ThreadLayout &layout, const ThreadSelection &selection)
{
    if (selection.isEmpty() || rows.count() == 0)
        return {};
    if (selection.last().row - selection.first().row >= mostRendered)
        return written(rows, selection);
    QString text;
    for (int row = selection.first().row; row <= std::min(selection.last().row, rows.count() - 1); ++row) {
        if (row > selection.first().row)
            text += separator(rows, row);
        text += rendered(rows, layout, row, selection);
    }
    return text;
}

} // namespace ThreadPositions

} // namespace nubble
