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

const Block &ThreadRows::block(int row) const
{
    const Message &message = messageAt(row);
    return message.blocks().at(static_cast<Size>(row - message.firstRow));
}

std::pair<int, int> ThreadRows::parts(int row) const
{
    const Message &message = messageAt(row);
    int first = row;
    while (first > message.firstRow && block(first).continues)
        --first;
    int end = row + 1;
    while (end < message.endRow() && block(end).continues)
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

void ThreadRows::clear()
{
    m_messages.clear();
    m_changed = 0;
    m_seen = 0;
}

void ThreadRows::append(const ThreadMessage &message)
{
    if (!m_messages.empty() && m_messages.back().isReply())
        m_messages.back().isFinished = true; // nothing of it is held back any longer
    m_changed = std::min(m_changed, update());
    Message added;
    added.content = message;
    added.firstRow = count();
    if (!added.isReply())
        added.plain = plainBlocks(message.text);
    m_messages.push_back(std::move(added));
    m_seen = -1; // what a message begins with is no text that is still arriving
}

void ThreadRows::appendText(QStringView text)
{
    Q_ASSERT(!m_messages.empty());
    Message &last = m_messages.back();
    last.content.text += text;
    if (!last.isReply()) {
        last.plain = plainBlocks(last.content.text);
        m_changed = std::min(m_changed, last.firstRow);
    }
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
    last.read = 0;
    const std::vector<Block> before = last.blocks();
    if (last.isReply()) {
        last.splitter = {};
        last.splitter.read(text);
        last.read = text.size();
    } else {
        last.plain = plainBlocks(text);
    }
    Size first = 0;
    while (first < std::min(before.size(), last.blocks().size()) && before[first] == last.blocks()[first]
           && before[first].end() <= same)
        ++first;
    m_changed = std::min(m_changed, last.firstRow + static_cast<int>(first));
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
    m_changed = std::min(m_changed, m_messages.back().firstRow);
    m_messages.pop_back();
    m_seen = -1;
}

int ThreadRows::update()
{
    if (!m_messages.empty() && m_messages.back().isReply()) {
        Message &last = m_messages.back();
        const QString &text = last.content.text;
        const qsizetype until = readable(last);
        m_seen = text.size();
        if (until > last.read) {
            const auto first = static_cast<int>(last.splitter.read(QStringView(text).first(until)));
            last.read = until;
            m_changed = std::min(m_changed, last.firstRow + first);
        }
    }
    return std::exchange(m_changed, count());
}

bool ThreadRows::isBehind() const
{
    return !m_messages.empty() && m_messages.back().isReply()
        && m_messages.back().read < m_messages.back().content.text.size();
}

// How much of the text can be shown. A line that may turn waits while it grows.
qsizetype ThreadRows::readable(const Message &message)
{
    const QStringView text = message.content.text;
    if (message.isFinished || m_seen < 0 || m_seen == text.size())
        return text.size();
    const QStringView end = text.last(std::min(text.size(), BlockLimits::paragraph));
    const qsizetype newline = end.lastIndexOf(u'\n');
    if (newline < 0 && end.size() < text.size())
        return text.size();
    const QStringView line = end.sliced(newline + 1);
    return mayTurn(line) ? std::max(message.read, text.size() - line.size()) : text.size();
}

} // namespace nubble
