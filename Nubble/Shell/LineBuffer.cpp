#include "Shell/LineBuffer.h"

namespace nubble {

void LineBuffer::append(const QByteArray &bytes)
{
    m_bytes += bytes;
}

std::optional<QByteArray> LineBuffer::takeLine()
{
    while (true) {
        const qsizetype end = m_bytes.indexOf('\n', m_searched);
        if (end < 0) {
            m_searched = m_bytes.size();
            if (m_searched > m_longest)
                leaveOutBegun();
            return std::nullopt;
        }
        QByteArray line = m_bytes.first(end);
        m_bytes.remove(0, end + 1); // moves no bytes
        m_searched = 0;
        if (!m_leavingOut && line.size() <= m_longest)
            return line;
        m_leavingOut = false;
    }
}

void LineBuffer::leaveOutBegun()
{
    m_leavingOut = true;
    m_bytes.clear();
    m_searched = 0;
}

void LineBuffer::clear()
{
    *this = LineBuffer(m_longest);
}

} // namespace nubble
