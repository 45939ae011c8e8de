#pragma once

#include <QByteArray>

#include <optional>

namespace nubble {

// Cuts a stream of bytes into lines. A line that is longer than the limit is left out.
class LineBuffer {
public:
    explicit LineBuffer(qsizetype longest) : m_longest(longest) { }

    void append(const QByteArray &bytes);
    [[nodiscard]] std::optional<QByteArray> takeLine(); // without its end; none until that has come
    void leaveOutBegun(); // all that has not been taken, up to the next end of a line
    [[nodiscard]] qsizetype size() const { return m_bytes.size(); }
    void clear();

private:
    qsizetype m_longest;
    QByteArray m_bytes;
    qsizetype m_searched = 0; // so far there is no line's end
    bool m_leavingOut = false;
};

} // namespace nubble
