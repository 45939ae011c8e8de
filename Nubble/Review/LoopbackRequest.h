#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>

#include "Review/HttpAnswer.h"

class QSocketNotifier;

namespace nubble {

// What a server has answered.
struct HttpReply {
    int status = 0;
    QByteArray body;

    bool operator==(const HttpReply &) const = default;
};

// One HTTP request to 127.0.0.1, sent once and never again, whatever becomes of it; redirects are answers
// like others. Qt's own client is not for this: it sends a request again when the connection has ended
// without an answer, and its library alone would take 7 % more memory. Main thread only; nothing here blocks.
// Ends with this object.
class LoopbackRequest : public QObject {
    Q_OBJECT

public:
    struct Limits {
        std::chrono::milliseconds time{4000}; // from the beginning to the end
        qsizetype body = 65'536;              // bytes
    };

    // Asks for `path`; sends `json` to it unless there is none.
    LoopbackRequest(
        quint16 port, const QByteArray &path, const std::optional<QByteArray> &json, Limits limits,
        QObject *parent = nullptr);
    ~LoopbackRequest() override;

Q_SIGNALS:
    // Once, never from within the constructor. None when no whole answer has come. To be deleted later, not
    // from within.
    void finished(const std::optional<nubble::HttpReply> &reply);

private:
    void connectTo(quint16 port);
    void send();
    void receive();
    void finish();

    QByteArray m_unsent;
    HttpAnswer m_answer;
    QTimer m_patience;
    int m_socket = -1;
    std::unique_ptr<QSocketNotifier> m_writable;
    std::unique_ptr<QSocketNotifier> m_readable;
};

} // namespace nubble
