#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "support/HttpStandIn.h"

namespace nubble {

// The service that `claude` asks for messages, on the loopback. Keeps what it is asked, and answers as it was
// told last.
class MessagesServer : public HttpStandIn {
public:
    struct Answer {
        QByteArray stream{};    // of events; none: an error that is not worth another try
        bool breaksOff = false; // after the first block's text; `claude` tries again, in vain
        bool neverEnds = false; // but stays there
    };

    void answerWith(const Answer &answer) { m_answer = answer; }
    [[nodiscard]] const QList<QByteArray> &requests() const { return m_requests; }

    // The blocks of the last message that came.
    [[nodiscard]] QJsonArray lastBlocks() const
    {
        const QJsonDocument request = QJsonDocument::fromJson(m_requests.value(m_requests.size() - 1));
        return request[QStringLiteral("messages")].toArray().last()[QStringLiteral("content")].toArray();
    }

    // A message of text blocks, each in deltas.
    static QByteArray message(const QList<QStringList> &blocks)
    {
        QByteArray all = event(R"({"type":"message_start","message":{"id":"m","type":"message",)"
                               R"("role":"assistant","model":"x","content":[],"stop_reason":null,)"
                               R"("stop_sequence":null,"usage":{"input_tokens":1,"output_tokens":1}}})");
        for (const QStringList &deltas : blocks) {
            all += event(R"({"type":"content_block_start","index":0,)"
                         R"("content_block":{"type":"text","text":""}})");
            for (const QString &text : deltas)
                all += event(
                    R"({"type":"content_block_delta","index":0,"delta":{"type":"text_delta",)"
                    R"("text":")"
                    + text.toUtf8() + "\"}}");
            all += event(R"({"type":"content_block_stop","index":0})");
        }
        return all
            + event(R"({"type":"message_delta","delta":{"stop_reason":"end_turn","stop_sequence":null},)"
                    R"("usage":{"output_tokens":1}})")
            + event(R"({"type":"message_stop"})");
    }

private:
    static QByteArray event(const QByteArray &json)
    {
        const QByteArray type = QJsonDocument::fromJson(json)[QStringLiteral("type")].toString().toUtf8();
        return "event: " + type + "\ndata: " + json + "\n\n";
    }

    void take(
        QTcpSocket &socket, const QByteArray &method, const QByteArray &path, const QByteArray &body) override
    {
        if (method == "POST" && path.startsWith("/v1/messages?"))
            m_requests.append(body);
        answer(socket, QJsonDocument::fromJson(body)[QStringLiteral("stream")].toBool());
    }

    void answer(QTcpSocket &socket, bool streamed)
    {
        const bool fails = !streamed || m_answer.stream.isEmpty();
        QByteArray body = m_answer.stream;
        if (m_answer.breaksOff)
            body.truncate(body.indexOf("event: content_block_stop"));
        if (fails)
            body = R"({"type":"error","error":{"type":"invalid_request_error","message":"no"}})";
        socket.write(
            (fails ? "HTTP/1.1 400 Bad\r\ncontent-type: application/json"
                   : "HTTP/1.1 200 OK\r\ncontent-type: text/event-stream")
            + QByteArray("\r\nconnection: close\r\n\r\n") + body);
        if (fails || !m_answer.neverEnds)
            socket.disconnectFromHost();
    }

    Answer m_answer;
    QList<QByteArray> m_requests;
};

} // namespace nubble
