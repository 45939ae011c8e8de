#include "Thread/ThreadLayout.h"

#include <algorithm>

#include "Thread/ThreadRows.h"

namespace nubble {

void ThreadLayout::resize(QSize size)
{
    const bool isNarrower = size.width() != m_size.width();
    m_size = size;
    if (!isNarrower)
        return;
    forget();
    const int hidden = m_hidden;
    const int top = m_top;
    m_heights.truncate(0);
    rowsChanged(0);
    m_top = top;
    m_hidden = hidden;
}

void ThreadLayout::forget()
{
    m_live.clear();
}

void ThreadLayout::rowsChanged(int first)
{
    std::erase_if(m_live, [first](const auto &each) { return each.first >= first; });
    std::erase_if(m_shown, [this](const Shown &each) { return each.row >= m_rows.count(); });
    m_heights.truncate(std::min(first, m_heights.count()));
    estimateRest();
    // The row before is the last of its message or its thing no longer.
    if (const auto before = m_live.find(first - 1); before != m_live.end() && first <= m_rows.count())
        place(first - 1, before->second);
    if (m_top >= m_heights.count()) {
        m_top = std::max(0, m_heights.count() - 1);
        m_hidden = 0;
    }
}

// By message, for there may be a hundred thousand rows.
void ThreadLayout::estimateRest()
{
    int row = m_heights.count();
    if (row == m_rows.count())
        return;
    for (int i = m_rows.messageOf(row); i < m_rows.messageCount(); ++i)
        for (const ThreadRows::Message &message = m_rows.message(i); row < message.endRow; ++row)
            m_heights.append(RowBoxes::estimate(m_rows, message, row, m_size.width()));
}

const ThreadLayout::Row &ThreadLayout::row(int index)
{
    Row &row = m_live[index];
    row.used = m_clock;
    if (row.document)
        return row;
    const auto &message = m_rows.messageAt(index);
    row.document = std::make_unique<BlockDocument>(
        message.content.text, m_rows.block(index), RowBoxes::textWidth(m_rows, index, m_size.width()),
        !message.isReply());
    place(index, row);
    return row;
}

void ThreadLayout::place(int index, Row &row)
{
    row.box = RowBoxes::make(m_rows, index, *row.document, m_size.width());
    m_heights.set(index, row.box.height);
    light(row);
}

void ThreadLayout::light(Row &row) const
{
    row.matches = row.document->find(m_matcher);
    row.lit.clear();
    for (const TextRange &match : std::as_const(row.matches))
        row.lit += row.document->rects(match);
}

void ThreadLayout::setMatcher(const TextMatcher &matcher)
{
    m_matcher = matcher;
    for (auto &each : m_live)
        light(each.second);
}

int ThreadLayout::measure(int index)
{
    return row(index).box.height;
}

int ThreadLayout::below() const
{
    return RowBoxes::footerGap + (m_footer > 0 ? m_footer + RowBoxes::footerGap : 0);
}

void ThreadLayout::arrange()
{
    ++m_clock;
    m_shown.clear();
    const int count = m_heights.count();
    if (count == 0 || m_size.isEmpty())
        return;
    if (m_follows)
        arrangeFromEnd();
    int y = -m_hidden;
    int row = m_top;
    for (; row < count && y < m_size.height(); ++row)
        y += measure(row);
    if (!m_follows && row == count && y + below() <= m_size.height()) {
        m_follows = true; // there is nothing to fill the rest with
        arrangeFromEnd();
    }
    y = -m_hidden;
    for (row = m_top; row < count && y < m_size.height(); ++row) {
        m_shown.push_back({row, y});
        y += measure(row);
    }
    m_follows = m_follows && m_isLive;
    evict();
}

// The last row ends where the view does, or the first one begins there.
void ThreadLayout::arrangeFromEnd()
{
    int left = m_size.height() - below();
    int row = m_heights.count();
    while (row > 0 && left > 0)
        left -= measure(--row);
    m_top = std::min(row, m_heights.count() - 1);
    m_hidden = left > 0 ? 0 : row == m_heights.count() ? m_heights.height(m_top) - left : -left;
}

void ThreadLayout::scrollBy(int pixels)
{
    if (m_heights.count() == 0)
        return;
    m_follows = false;
    m_hidden += pixels;
    while (m_hidden < 0 && m_top > 0)
        m_hidden += measure(--m_top);
    m_hidden = std::max(m_hidden, 0);
    while (m_top + 1 < m_heights.count() && m_hidden >= measure(m_top))
        m_hidden -= measure(m_top++);
}

void ThreadLayout::scrollTo(int value)
{
    constexpr int nearby = 3; // views
    if (value >= maximum())
        return scrollToEnd();
    const int distance = value - this->value();
    if (value > 0 && std::abs(distance) <= nearby * m_size.height())
        return scrollBy(distance);
    m_follows = false;
    m_top = std::max(0, m_heights.at(value));
    m_hidden =
        m_heights.count() > 0 ? std::clamp(value - m_heights.start(m_top), 0, m_heights.height(m_top)) : 0;
}

void ThreadLayout::reveal(int row, const QRect &rect)
{
    constexpr int margin = 8;
    (void)measure(row);
    const int top = yOf(row) + rect.top() - margin;
    const int bottom = yOf(row) + rect.bottom() + margin;
    const bool isFar = top < -3 * m_size.height() || bottom > 4 * m_size.height();
    if (isFar) {
        scrollTo(row, rect.top(), m_size.height() / 2);
    } else if (top < 0) {
        scrollBy(top);
    } else if (bottom > m_size.height()) {
        scrollBy(bottom - m_size.height());
    }
}

void ThreadLayout::scrollToStart()
{
    m_follows = false;
    m_top = 0;
    m_hidden = 0;
}

void ThreadLayout::scrollTo(int row, int inRow, int y)
{
    m_follows = false;
    m_top = row;
    m_hidden = 0;
    scrollBy(inRow - y);
}

int ThreadLayout::yOf(int row) const
{
    return m_heights.start(row) - m_heights.start(m_top) - m_hidden;
}

int ThreadLayout::rowAt(int y) const
{
    if (m_heights.count() == 0)
        return -1;
    return m_heights.at(std::max(0, y + m_heights.start(m_top) + m_hidden));
}

int ThreadLayout::value() const
{
    return m_heights.count() == 0 ? 0 : m_heights.start(m_top) + m_hidden;
}

int ThreadLayout::maximum() const
{
    return std::max({0, value(), m_heights.total() + below() - m_size.height()});
}

// Keeps what is seen and what was seen last.
void ThreadLayout::evict()
{
    constexpr std::size_t mostUnseen = 64;
    const std::size_t most = m_shown.size() + mostUnseen;
    if (m_live.size() <= most + 16)
        return;
    std::vector<quint64> ages;
    for (const auto &each : m_live)
        ages.push_back(each.second.used);
    const auto oldest = ages.begin() + static_cast<std::ptrdiff_t>(ages.size() - most);
    std::nth_element(ages.begin(), oldest, ages.end());
    std::erase_if(
        m_live, [&](const auto &each) { return each.second.used < *oldest && each.second.used != m_clock; });
}

} // namespace nubble
