#pragma once

#include <QHash>
#include <QTcpServer>
#include <QTcpSocket>

#include <functional>

namespace nubble {

// Quenwick's interface, as a test has it answer. Keeps what it is asked: "METHOD PATH BODY".
class QuenwickServer : public QTcpServer {
public:
    using Script = std::function<void(QTcpSocket &)>;

    QuenwickServer()
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(*socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
        if (!listen(QHostAddress::LocalHost))
            qFatal("cannot listen");
    }

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
    void read(QTcpSocket &socket)
    {
        const QByteArray all = socket.peek(socket.bytesAvailable());
        const qsizetype head = all.indexOf("\r\n\r\n") + 4;
        const QByteArray name = "Content-Length: ";
        const qsizetype at = all.indexOf(name) + name.size();
        const qsizetype size = at < name.size() ? 0 : all.mid(at, all.indexOf('\r', at) - at).toInt();
        if (head < 4 || all.size() < head + size)
            return;
        socket.readAll();
        const QList<QByteArray> words = all.first(all.indexOf('\r')).split(' ');
        m_requests.append(words.at(0) + ' ' + words.at(1) + ' ' + all.sliced(head, size));
        if (const Script script = m_scripts.value(words.at(1)))
            script(socket);
    }

    QHash<QByteArray, Script> m_scripts;
    QList<QByteArray> m_requests;
};

} // namespace nubble
