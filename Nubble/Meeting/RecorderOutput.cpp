#include "Meeting/RecorderOutput.h"

#include <algorithm>

namespace nubble {

namespace {

// How many bytes at the end are a character's beginning.
qsizetype begunCharacter(const QByteArray &bytes)
{
    constexpr qsizetype longest = 3; // a character has four at most
    for (qsizetype size = 1; size <= std::min(longest, bytes.size()); ++size) {
        const auto byte = static_cast<unsigned char>(bytes.at(bytes.size() - size));
        const bool isFirst = byte >= 0xc0;
        const qsizetype whole = byte >= 0xf0 ? 4 : byte >= 0xe0 ? 3 : 2;
        if (isFirst)
            return size < whole ? size : 0;
        if (byte < 0x80)
            break;
    }
    return 0;
}

QString trimmed(QString line)
{
    const auto isBlank = [](QChar each) { return each == u' ' || each == u'\t'; };
    const auto first = std::find_if_not(line.cbegin(), line.cend(), isBlank);
    line.remove(0, first - line.cbegin());
    while (!line.isEmpty() && isBlank(line.back()))
        line.chop(1);
    return line;
}

} // namespace

QByteArray RecorderOutput::append(const QByteArray &chunk)
{
    QByteArray text = std::exchange(m_begun, {}) + chunk;
    m_begun = text.last(begunCharacter(text));
    text.chop(m_begun.size());
    if (!QByteArrayView(text).isValidUtf8())
        return {};
    if (text.size() > longestLine)
        m_lines.leaveOutBegun(); // to read all of a flood would take too long
    m_lines.append(text.last(std::min(text.size(), longestLine)));
    return text;
}

std::optional<QString> RecorderOutput::takeLine()
{
    while (const std::optional<QByteArray> line = m_lines.takeLine())
        if (QString text = trimmed(QString::fromUtf8(*line)); !text.isEmpty())
            return text;
    return std::nullopt;
}

} // namespace nubble
