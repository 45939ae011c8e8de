#pragma once

#include <QHash>

#include <functional>

#include "support/HttpStandIn.h"

namespace nubble {

// Quenwick's interface, as a test has it answer. Keeps what it is asked: "METHOD PATH BODY".
class QuenwickServer : public HttpStandIn {
public:
    using Script = std::function<void(QTcpSocket &)>;

    // What is done about requests for this path from now on; nothing, and for ever, where none is set.
    void on(const QByteArray &path, const Script &script) { m_scripts[path] = script; }
    void answer(const QByteArray &path, const QByteArray &json) { on(path, whole(json)); }

    [[nodiscard]] const QList<QByteArray> &requests() const { return m_requests; }
    QList<QByteArray> requestsFor(const QByteArray &path) const
    {
        QList<QByteArray> result;
        for (const QByteArray &each : m_requests)
            if (each.contains(QByteArray(' ' + path + ' ')))
                result.append(each);
        return result;
    }

    // The connection stays open, as most servers have it.
    static Script whole(const QByteArray &json, const QByteArray &status = "200 OK")
    {
        return bytes(
            "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(json.size()) + "\r\n\r\n"
            + json);
    }
    static Script bytes(const QByteArray &all)
    {
        return [all](QTcpSocket &socket) { socket.write(all); };
    }
    static Script bytesAndEnd(const QByteArray &all)
    {
        return [all](QTcpSocket &socket) {
            socket.write(all);
            socket.disconnectFromHost();
        };
    }
    // Each in a packet of its own.
    static Script byteByByte(const QByteArray &all)
    {
        return [all](QTcpSocket &socket) {
            socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
            for (const char each : all) {
                socket.write(&each, 1);
                socket.flush();
            }
        };
    }
    static void reset(QTcpSocket &socket) { socket.abort(); }
    static void end(QTcpSocket &socket) { socket.disconnectFromHost(); }

private:
    void take(
        QTcpSocket &socket, const QByteArray &method, const QByteArray &path, const QByteArray &body) override
    {
        m_requests.append(method + ' ' + path + ' ' + body);
        if (const Script script = m_scripts.value(path))
            script(socket);
    }

    QHash<QByteArray, Script> m_scripts;
    QList<QByteArray> m_requests;
};

} // namespace nubble
