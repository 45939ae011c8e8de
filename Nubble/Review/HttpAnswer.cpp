#include "Review/HttpAnswer.h"

#include <QList>

#include <algorithm>

namespace nubble {

namespace {

constexpr qsizetype largestHead = 16'384; // bytes; as of a line between chunks
constexpr QByteArrayView lineEnd = "\r\n";
constexpr QByteArrayView headEnd = "\r\n\r\n";

// The values of all headers of that name.
QList<QByteArray> valuesOf(const QList<QByteArray> &lines, QByteArrayView name)
{
    QList<QByteArray> values;
    for (const QByteArray &line : lines)
        if (const qsizetype colon = line.indexOf(':');
            colon > 0 && line.first(colon).compare(name, Qt::CaseInsensitive) == 0)
            values.append(line.sliced(colon + 1).trimmed());
    return values;
}

// None when it is none, or below 0: QByteArray's own reading takes signs and white space as well.
std::optional<qint64> numberIn(const QByteArray &text, int base)
{
    const bool isPlain = !text.isEmpty() && std::ranges::all_of(text, [base](char each) {
        return (each >= '0' && each <= '9') || (base == 16 && ((each | 0x20) >= 'a' && (each | 0x20) <= 'f'));
    });
    bool isNumber = false;
    const qint64 number = text.toLongLong(&isNumber, base);
    return isPlain && isNumber ? std::optional(number) : std::nullopt;
}

// Of "HTTP/1.1 200 OK"; 0 when it is no such line.
int statusIn(const QByteArray &line)
{
    if (!line.startsWith("HTTP/1.") || line.size() < 12 || line.at(8) != ' ')
        return 0;
    const qint64 status = numberIn(line.sliced(9, 3), 10).value_or(0);
    return status >= 100 && (line.size() == 12 || line.at(12) == ' ') ? static_cast<int>(status) : 0;
}

} // namespace

HttpAnswer::State HttpAnswer::state() const
{
    if (m_expected == Expected::Nothing)
        return State::Whole;
    return m_expected == Expected::Failed ? State::Broken : State::Arriving;
}

void HttpAnswer::append(QByteArrayView bytes)
{
    if (state() != State::Arriving)
        return;
    m_arrived += bytes;
    while (state() == State::Arriving && advance()) { }
}

void HttpAnswer::end()
{
    if (state() == State::Arriving)
        m_expected = m_expected == Expected::BodyToEnd ? Expected::Nothing : Expected::Failed;
}

// Deals with one thing that has arrived; false when there is none.
bool HttpAnswer::advance()
{
    if (m_expected == Expected::Body || m_expected == Expected::BodyToEnd || m_expected == Expected::Chunk) {
        const bool isThere = !m_arrived.isEmpty();
        takeBody();
        return isThere;
    }
    const auto piece = taken(m_expected == Expected::Head ? headEnd : lineEnd);
    if (!piece)
        return false;
    if (m_expected == Expected::Head)
        readHead(*piece);
    else if (m_expected == Expected::ChunkSize)
        readChunkSize(*piece);
    else if (m_expected == Expected::ChunkEnd)
        m_expected = piece->isEmpty() ? Expected::ChunkSize : Expected::Failed;
    else if (piece->isEmpty()) // of the trailer, which says nothing that is needed
        m_expected = Expected::Nothing;
    return true;
}

std::optional<QByteArray> HttpAnswer::taken(QByteArrayView upTo)
{
    const qsizetype end = m_arrived.indexOf(upTo, m_searched);
    if (end > largestHead || (end < 0 && m_arrived.size() > largestHead))
        m_expected = Expected::Failed;
    m_searched = std::max<qsizetype>(m_arrived.size() - upTo.size() + 1, 0);
    if (end < 0 || m_expected == Expected::Failed)
        return std::nullopt;
    const QByteArray piece = m_arrived.first(end);
    m_arrived.remove(0, end + upTo.size());
    m_searched = 0;
    return piece;
}

void HttpAnswer::readHead(const QByteArray &head)
{
    QList<QByteArray> lines;
    for (qsizetype from = 0, to = 0; to >= 0; from = to + lineEnd.size()) {
        to = head.indexOf(lineEnd, from);
        lines.append(head.sliced(from, (to < 0 ? head.size() : to) - from));
    }
    m_status = statusIn(lines.takeFirst());
    const QList<QByteArray> codings = valuesOf(lines, "Transfer-Encoding");
    const QList<QByteArray> lengths = valuesOf(lines, "Content-Length");
    const bool isSound = m_status != 0 && (codings.isEmpty() || codings == QList<QByteArray>{"chunked"})
        && std::ranges::count(lengths, lengths.value(0)) == lengths.size();
    constexpr int firstFinal = 200; // before it, more heads follow
    if (!isSound)
        m_expected = Expected::Failed;
    else if (m_status < firstFinal)
        m_expected = Expected::Head;
    else if (m_status == 204 || m_status == 304)
        m_expected = Expected::Nothing;
    else if (!codings.isEmpty())
        m_expected = Expected::ChunkSize;
    else if (lengths.isEmpty())
        m_expected = Expected::BodyToEnd;
    else
        expectBytes(Expected::Body, numberIn(lengths.first(), 10).value_or(-1));
}

void HttpAnswer::readChunkSize(const QByteArray &line)
{
    const QByteArray size = line.first(line.contains(';') ? line.indexOf(';') : line.size()).trimmed();
    const std::optional<qint64> count = numberIn(size, 16);
    if (count == 0)
        m_expected = Expected::Trailer;
    else
        expectBytes(Expected::Chunk, count.value_or(-1));
}

void HttpAnswer::expectBytes(Expected what, qint64 count)
{
    const bool fits = count >= 0 && count <= m_largestBody - m_body.size();
    m_missing = fits ? static_cast<qsizetype>(count) : 0;
    m_expected = fits ? what : Expected::Failed;
    if (fits && m_missing == 0)
        m_expected = Expected::Nothing;
}

void HttpAnswer::takeBody()
{
    if (m_expected == Expected::BodyToEnd) {
        m_body += m_arrived;
        m_arrived.clear();
        if (m_body.size() > m_largestBody)
            m_expected = Expected::Failed;
        return;
    }
    const qsizetype count = std::min(m_missing, m_arrived.size());
    m_body += m_arrived.first(count);
    m_arrived.remove(0, count);
    m_missing -= count;
    if (m_missing == 0)
        m_expected = m_expected == Expected::Chunk ? Expected::ChunkEnd : Expected::Nothing;
}

} // namespace nubble
