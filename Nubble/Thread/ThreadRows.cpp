#include "Thread/ThreadRows.h"

#include <algorithm>

#include "Thread/BlockSource.h"

namespace nubble {

namespace {

using Size = std::vector<Block>::size_type;

// What has just begun may still become something else: "``" a fence, and "| a" a row of a table.
bool mayTurn(QStringView unfinished)
{
    const QStringView text = unfinished.trimmed();
    if (text.startsWith(u'|'))
        return true;
    return !text.isEmpty() && text.size() < 3
        && std::all_of(text.begin(), text.end(), [](QChar each) { return each == u'`'; });
}

qsizetype commonLength(QStringView one, QStringView other)
{
    const auto length = std::min(one.size(), other.size());
    return std::mismatch(one.begin(), one.begin() + length, other.begin()).first - one.begin();
}

} // namespace

int ThreadRows::messageOf(int row) const
{
    const auto behind =
        std::upper_bound(m_messages.begin(), m_messages.end(), row, [](int each, const Message &message) {
            return each < message.firstRow;
        });
    return static_cast<int>(behind - m_messages.begin()) - 1;
}

std::pair<int, int> ThreadRows::parts(int row) const
{
    const Message &message = messageAt(row);
    int first = row;
    while (first > message.firstRow && block(first).continues)
        --first;
    int end = row + 1;
    while (end < message.endRow && block(end).continues)
        ++end;
    return {first, end};
}

QString ThreadRows::codeAt(int row) const
{
    const auto [first, end] = parts(row);
    Block whole = block(first);
    whole.length = block(end - 1).end() - whole.start;
    return BlockSource::code(messageAt(row).content.text, whole);
}

ThreadRows ThreadRows::of(const QList<ThreadMessage> &messages)
{
    ThreadRows rows;
    rows.m_messages.reserve(static_cast<std::size_t>(messages.size()));
    for (const ThreadMessage &message : messages) {
        rows.add(message);
        rows.cutLast(message.text);
        rows.m_messages.back().isFinished = true;
    }
    rows.m_splitter = {};
    rows.m_blocks.shrink_to_fit();
    return rows;
}

void ThreadRows::clear()
{
    *this = {};
}

void ThreadRows::append(const ThreadMessage &message)
{
    if (!m_messages.empty() && m_messages.back().isReply())
        m_messages.back().isFinished = true; // nothing of it is held back any longer
    m_changed = std::min(m_changed, update());
    add(message);
    if (!m_messages.back().isReply())
        cutLast(message.text);
    m_seen = -1; // what a message begins with is no text that is still arriving
}

// The one before is cut whole.
void ThreadRows::add(const ThreadMessage &message)
{
    Message added;
    added.content = message;
    added.firstRow = added.endRow = count();
    m_messages.push_back(std::move(added));
    m_splitter = {};
    m_read = 0;
}

// `text` is the last message's, or what of it is to be shown yet.
void ThreadRows::cutLast(QStringView text)
{
    Message &last = m_messages.back();
    qsizetype first = 0;
    std::vector<Block> plain;
    if (last.isReply())
        first = m_splitter.read(text);
    else
        plain = plainBlocks(text);
    const std::vector<Block> &all = last.isReply() ? m_splitter.blocks() : plain;
    m_blocks.resize(static_cast<Size>(last.firstRow + first));
    m_blocks.insert(m_blocks.end(), all.begin() + first, all.end());
    last.endRow = count();
    m_read = text.size();
    m_changed = std::min(m_changed, last.firstRow + static_cast<int>(first));
}

void ThreadRows::appendText(QStringView text)
{
    Q_ASSERT(!m_messages.empty());
    Message &last = m_messages.back();
    last.content.text += text;
    if (!last.isReply())
        cutLast(last.content.text);
}

void ThreadRows::setText(const QString &text)
{
    Q_ASSERT(!m_messages.empty());
    Message &last = m_messages.back();
    const qsizetype same = commonLength(last.content.text, text);
    m_seen = -1;
    if (same == last.content.text.size())
        return appendText(QStringView(text).sliced(same));
    last.content.text = text;
    const int changed = m_changed;
    const std::vector<Block> before(m_blocks.begin() + last.firstRow, m_blocks.end());
    m_splitter = {};
    cutLast(text);
    const std::vector<Block> after(m_blocks.begin() + last.firstRow, m_blocks.end());
    Size first = 0;
    while (first < std::min(before.size(), after.size()) && before[first] == after[first]
           && before[first].end() <= same)
        ++first;
    m_changed = std::min(changed, last.firstRow + static_cast<int>(first));
}

void ThreadRows::finishLast()
{
    if (m_messages.empty())
        return;
    m_messages.back().isFinished = true;
    m_changed = std::min(m_changed, std::max(0, count() - 1));
}

void ThreadRows::removeLast()
{
    if (m_messages.empty())
        return;
    m_blocks.resize(static_cast<Size>(m_messages.back().firstRow));
    m_changed = std::min(m_changed, count());
    m_messages.pop_back();
    m_splitter = {}; // which reads the one before anew if ever that grows
    m_read = m_messages.empty() ? 0 : m_messages.back().content.text.size();
    m_seen = -1;
}

int ThreadRows::update()
{
    if (!m_messages.empty() && m_messages.back().isReply()) {
        const QString &text = m_messages.back().content.text;
        const qsizetype until = readable(m_messages.back());
        m_seen = text.size();
        if (until > m_read)
            cutLast(QStringView(text).first(until));
    }
    return std::exchange(m_changed, count());
}

bool ThreadRows::isBehind() const
{
    return !m_messages.empty() && m_messages.back().isReply()
        && m_read < m_messages.back().content.text.size();
}

// How much of the text can be shown. A line that may turn waits while it grows.
qsizetype ThreadRows::readable(const Message &message) const
{
    const QStringView text = message.content.text;
    if (message.isFinished || m_seen < 0 || m_seen == text.size())
        return text.size();
    const QStringView end = text.last(std::min(text.size(), BlockLimits::paragraph));
    const qsizetype newline = end.lastIndexOf(u'\n');
    if (newline < 0 && end.size() < text.size())
        return text.size();
    const QStringView line = end.sliced(newline + 1);
    return mayTurn(line) ? std::max(m_read, text.size() - line.size()) : text.size();
}

} // namespace nubble
