#include "Thread/BlockSplitter.h"

#include <QList>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace nubble {

namespace {

constexpr int anyNumber = std::numeric_limits<int>::max();

Block::Marker taskMarker(QStringView rest)
{
    if (rest.size() < 4 || rest.front() != u'[' || rest.at(2) != u']' || rest.at(3) != u' ')
        return Block::Marker::None;
    const QChar state = rest.at(1).toLower();
    return state == u'x' ? Block::Marker::Done : state == u' ' ? Block::Marker::ToDo : Block::Marker::None;
}

} // namespace

qsizetype BlockSplitter::read(QStringView text)
{
    m_text = text;
    auto first = m_settledBlocks > 0 ? m_settledBlocks - 1 : 0;
    const std::vector<Block> before(m_blocks.begin() + static_cast<qsizetype>(first), m_blocks.end());
    m_blocks.resize(m_settledBlocks);
    if (!m_blocks.empty())
        m_blocks.back() = m_settledLast;
    m_state = m_settled;

    while (const auto piece = nextPiece(text.sliced(m_position))) {
        readLine({m_position, m_position + piece->length, m_position}, m_lineStarts);
        m_position += piece->next;
        m_lineStarts = piece->endsLine;
    }
    m_settled = m_state;
    m_settledBlocks = m_blocks.size();
    if (!m_blocks.empty())
        m_settledLast = m_blocks.back();

    if (m_position < text.size())
        readLine({m_position, text.size(), m_position}, m_lineStarts);
    m_text = {};
    for (const Block &block : before) {
        if (first == m_blocks.size() || m_blocks.at(first) != block)
            break;
        ++first;
    }
    return static_cast<qsizetype>(first);
}

void BlockSplitter::readLine(Line line, bool isWhole)
{
    if (line.end > line.start && m_text.at(line.end - 1) == u'\r')
        --line.end;
    if (!isWhole)
        return resumeLine(line);
    if (m_state.open == Open::Fence && readFenced(line))
        return;
    Line text = line;
    const int quotes = skipQuotes(text, deepest);
    Line start = text;
    skipIndent(start);
    const bool continues = quotes < m_state.quotes && m_state.open == Open::Paragraph
        && !rest(start).isEmpty() && !startsBlock(start);
    if (continues)
        return readText(start);
    if (quotes != m_state.quotes)
        enterQuotes(quotes, line);
    readContent(text);
}

// More of a line that was too long to be looked at whole.
void BlockSplitter::resumeLine(const Line &line)
{
    switch (m_state.open) {
    case Open::Fence:
    case Open::Indented:
    case Open::Table:
        return extend(line, BlockLimits::part, anyNumber);
    case Open::Paragraph:
        return extend(line, BlockLimits::paragraph, anyNumber);
    case Open::None:
        break;
    }
    if (m_blocks.empty() || m_blocks.back().kind != Block::Kind::Heading)
        return readText(line);
    m_state.lines = 1;
    extend(line, 0, anyNumber);
}

bool BlockSplitter::readFenced(Line line)
{
    if (skipQuotes(line, m_state.quotes) < m_state.quotes) {
        close();
        return false;
    }
    const int column = m_blocks.back().column;
    Line start = line;
    skipIndent(start);
    if (start.column <= column + 3 && MarkdownLine::closes(m_state.fence, rest(start))) {
        close();
        return true;
    }
    skipIndent(line, column);
    extend(line, BlockLimits::part, BlockLimits::lines);
    return true;
}

int BlockSplitter::skipQuotes(Line &line, int most) const
{
    int quotes = 0;
    for (; quotes < most; ++quotes) {
        Line mark = line;
        skipIndent(mark);
        const bool isCode = mark.column > 3 && m_state.lists.isEmpty() && m_state.quotes == 0;
        if (mark.at == line.end || m_text.at(mark.at) != u'>' || isCode)
            break;
        line.at = mark.at + 1;
        if (line.at < line.end && m_text.at(line.at) == u' ')
            ++line.at;
        line.column = 0;
    }
    return quotes;
}

void BlockSplitter::enterQuotes(int quotes, const Line &line)
{
    close();
    if (m_state.quotes == 0) {
        Line mark = line;
        skipIndent(mark);
        leaveLists(mark.column);
        m_state.outside = std::exchange(m_state.lists, {});
    } else {
        m_state.lists = quotes == 0 ? std::exchange(m_state.outside, {}) : Lists{};
    }
    m_state.quotes = quotes;
}

void BlockSplitter::readContent(Line line)
{
    Line start = line;
    skipIndent(start);
    if (rest(start).isEmpty()) {
        if (m_state.open != Open::Indented)
            close();
        return;
    }
    const bool isIndented = start.column >= 4 && m_state.lists.isEmpty();
    if (m_state.open == Open::Indented && !isIndented)
        close();
    if (isIndented && (m_state.open == Open::None || m_state.open == Open::Indented)) {
        if (m_state.open == Open::None)
            begin(Block::Kind::Code, line.at, line.at).column = 4;
        m_state.open = Open::Indented;
        skipIndent(line, 4);
        return extend(line, BlockLimits::part, BlockLimits::lines);
    }
    const bool isText = isIndented && m_state.open == Open::Paragraph;
    if (isText || (!readOpen(start) && !readBlockStart(start)))
        readText(start);
}

// What the open block makes of the line.
bool BlockSplitter::readOpen(const Line &line)
{
    if (m_state.open == Open::Table) {
        if (rest(line).contains(u'|') && !startsBlock(line)) {
            extend(line, BlockLimits::part, m_state.rows);
            return true;
        }
        close();
    }
    if (m_state.open != Open::Paragraph)
        return false;
    if (beginTable(line))
        return true;
    const bool isInside = m_state.lists.isEmpty() || line.column >= m_state.lists.back().column + 2;
    const int level = isInside && m_state.lines > 0 ? MarkdownLine::underlineLevel(rest(line)) : 0;
    if (level == 0)
        return false;
    m_blocks.back().kind = Block::Kind::Heading;
    m_blocks.back().level = level;
    close();
    return true;
}

bool BlockSplitter::readBlockStart(const Line &line)
{
    if (MarkdownLine::isRule(rest(line))) {
        leaveLists(line.column);
        begin(Block::Kind::Rule, line.at, line.end);
        return true;
    }
    if (const auto fence = MarkdownLine::fence(rest(line))) {
        beginFence(*fence, line);
        return true;
    }
    if (const int level = MarkdownLine::headingLevel(rest(line))) {
        beginHeading(level, line);
        return true;
    }
    return readItem(line);
}

bool BlockSplitter::startsBlock(const Line &line) const
{
    const QStringView text = rest(line);
    return MarkdownLine::isRule(text) || MarkdownLine::fence(text) || MarkdownLine::headingLevel(text) > 0
        || MarkdownLine::listMark(text);
}

bool BlockSplitter::readItem(const Line &line)
{
    const auto mark = MarkdownLine::listMark(rest(line));
    if (!mark)
        return false;
    const bool isEmpty = rest(line).sliced(mark->length).trimmed().isEmpty();
    const bool interrupts = m_state.open == Open::Paragraph && m_state.lists.isEmpty();
    if (interrupts && (isEmpty || (mark->number >= 0 && mark->number != 1)))
        return false; // "… in\n2024. And then": a number that is no list's first
    beginItem(*mark, line);
    return true;
}

void BlockSplitter::beginItem(const MarkdownLine::ListMark &mark, const Line &line)
{
    close();
    ListLevel level{line.column, mark};
    while (!m_state.lists.isEmpty() && line.column < m_state.lists.back().column + 2) {
        const ListLevel sibling = m_state.lists.back();
        m_state.lists.removeLast();
        level.mark.number = mark.number;
        if (sibling.mark.mark == mark.mark && mark.number >= 0)
            level.mark.number = std::max(mark.number, sibling.mark.number + 1);
    }
    if (m_state.lists.size() == deepest)
        m_state.lists.removeLast();
    m_state.lists.append(level);
    m_state.marker = mark.number < 0 ? Block::Marker::Bullet : Block::Marker::Number;

    Line inner = line;
    inner.at += mark.length;
    inner.column += static_cast<int>(mark.length);
    skipIndent(inner);
    if (const int quotes = skipQuotes(inner, deepest)) {
        m_state.outside = std::exchange(m_state.lists, {});
        m_state.quotes += quotes;
    }
    if (const Block::Marker task = taskMarker(rest(inner)); task != Block::Marker::None) {
        m_state.marker = task;
        inner.at += 4;
    }
    if (rest(inner).isEmpty()) {
        begin(Block::Kind::Paragraph, inner.end, inner.end);
        m_state.open = Open::Paragraph;
    } else if (!readBlockStart(inner)) {
        readText(inner);
    }
}

void BlockSplitter::beginFence(const MarkdownLine::Fence &fence, const Line &line)
{
    leaveLists(line.column);
    Block &block = begin(Block::Kind::Code, line.end, line.end);
    block.column = line.column;
    block.head = line.at + fence.length;
    block.headLength = line.end - block.head;
    m_state.fence = fence;
    m_state.open = Open::Fence;
}

void BlockSplitter::beginHeading(int level, Line line)
{
    leaveLists(line.column);
    line.at += level;
    const QStringView text = MarkdownLine::headingText(rest(line));
    const qsizetype start = text.isEmpty() ? line.end : text.data() - m_text.data();
    begin(Block::Kind::Heading, start, start + text.size()).level = level;
}

// The paragraph's last line was a table's header if this one says so.
bool BlockSplitter::beginTable(const Line &line)
{
    const qsizetype columns = MarkdownLine::announcedColumns(rest(line));
    Block &last = m_blocks.back();
    const qsizetype header = m_state.lastLine;
    if (columns == 0 || m_state.lines == 0 || last.end() <= header || header < last.start) // which was cut
        return false;
    const QStringView headerText = m_text.sliced(header, last.end() - header);
    if (!headerText.contains(u'|') || MarkdownLine::cells(headerText).size() != columns)
        return false;
    if (header > last.start) { // there is text above
        const Block above = last;
        m_blocks.back().length = m_text.first(header).lastIndexOf(u'\n', header - 1) - above.start;
        begin(Block::Kind::Table, header, line.end);
    }
    Block &table = m_blocks.back();
    m_state.open = Open::Table;
    m_state.rows = std::min(BlockLimits::rows, static_cast<int>(BlockLimits::cells / columns));
    table.kind = columns > mostColumns ? Block::Kind::Code : Block::Kind::Table;
    table.length = line.end - header;
    m_state.lines = 2;
    if (table.kind == Block::Kind::Code)
        return true;
    m_state.lines = 0;
    table.head = header;
    table.headLength = std::exchange(table.length, 0);
    table.start = line.end;
    return true;
}

void BlockSplitter::readText(const Line &line)
{
    if (m_state.open != Open::Paragraph) {
        leaveLists(line.column);
        begin(Block::Kind::Paragraph, line.at, line.at);
        m_state.open = Open::Paragraph;
    }
    m_state.lastLine = line.at;
    extend(line, BlockLimits::paragraph, anyNumber);
}

void BlockSplitter::leaveLists(int column)
{
    while (!m_state.lists.isEmpty() && column < m_state.lists.back().column + 2)
        m_state.lists.removeLast();
}

void BlockSplitter::skipIndent(Line &line, int until) const
{
    const auto indent = MarkdownLine::indent(m_text.first(line.end), line.at, line.column, until);
    line.at += indent.length;
    line.column = indent.column;
}

Block &BlockSplitter::begin(Block::Kind kind, qsizetype start, qsizetype end)
{
    close();
    Block block;
    block.kind = kind;
    block.marker = std::exchange(m_state.marker, Block::Marker::None);
    block.number = m_state.lists.isEmpty() ? 0 : m_state.lists.back().mark.number;
    block.depth = static_cast<int>(m_state.lists.size() + m_state.outside.size());
    block.quotes = m_state.quotes;
    block.outside = static_cast<int>(m_state.outside.size());
    block.start = start;
    block.length = end - start;
    m_blocks.push_back(block);
    return m_blocks.back();
}

// Adds the line to the last block, or to a new one that continues it.
void BlockSplitter::extend(const Line &line, qsizetype longest, int mostLines)
{
    if (m_state.lines > 0 && (line.end - m_blocks.back().start > longest || m_state.lines >= mostLines)) {
        Block next = m_blocks.back();
        next.sampleEnd = next.continues ? next.sampleEnd : next.end();
        next.continues = true;
        m_blocks.push_back(next);
        m_blocks.back().marker = Block::Marker::None;
        m_state.lines = 0;
    }
    if (m_state.lines++ == 0)
        m_blocks.back().start = line.at;
    m_blocks.back().length = line.end - m_blocks.back().start;
}

void BlockSplitter::close()
{
    m_state.open = Open::None;
    m_state.lines = 0;
}

} // namespace nubble
