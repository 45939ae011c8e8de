#pragma once

#include <QByteArray>

#include <optional>

namespace nubble {

// An HTTP/1.1 answer, put together from the pieces in which it arrives; at most `largestBody` bytes and a
// head of 16 kB. Pure.
class HttpAnswer {
public:
    enum class State {
        Arriving,
        Whole,
        Broken // no such answer, too large, or cut off
    };

    explicit HttpAnswer(qsizetype largestBody) : m_largestBody(largestBody) { }

    void append(QByteArrayView bytes);
    void end(); // the server has closed the connection

    [[nodiscard]] State state() const;
    [[nodiscard]] int status() const { return m_status; } // such as 200, once it is whole
    [[nodiscard]] const QByteArray &body() const { return m_body; }

private:
    enum class Expected { Head, BodyToEnd, Body, ChunkSize, Chunk, ChunkEnd, Trailer, Nothing, Failed };

    bool advance();
    void readHead(const QByteArray &head);
    void readChunkSize(const QByteArray &line);
    void takeBody();
    void expectBytes(Expected what, qint64 count);
    std::optional<QByteArray> taken(QByteArrayView upTo);

    const qsizetype m_largestBody;
    Expected m_expected = Expected::Head;
    qsizetype m_missing = 0; // bytes of the body or of the chunk
    int m_status = 0;
    QByteArray m_arrived;     // and not dealt with
    qsizetype m_searched = 0; // of that, in vain for the end of the head or line
    QByteArray m_body;
};

} // namespace nubble
