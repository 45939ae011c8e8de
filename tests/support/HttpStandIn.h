#pragma once

#include <QTcpServer>
#include <QTcpSocket>

namespace nubble {

// A server on the loopback, of one request after the other on each connection.
class HttpStandIn : public QTcpServer {
public:
    HttpStandIn()
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(*socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
        if (!listen(QHostAddress::LocalHost))
            qFatal("cannot listen");
    }

protected:
    virtual void take(
        QTcpSocket &socket, const QByteArray &method, const QByteArray &path, const QByteArray &body) = 0;

private:
    void read(QTcpSocket &socket)
    {
        const QByteArray all = socket.peek(socket.bytesAvailable());
        const qsizetype head = all.indexOf("\r\n\r\n") + 4;
        const QByteArray name = "\r\ncontent-length: ";
        const qsizetype at = all.toLower().indexOf(name) + name.size();
        const qsizetype size = at < name.size() ? 0 : all.mid(at, all.indexOf('\r', at) - at).toInt();
        if (head < 4 || all.size() < head + size)
            return;
        socket.readAll();
        const QList<QByteArray> words = all.first(all.indexOf('\r')).split(' ');
        take(socket, words.at(0), words.at(1), all.sliced(head, size));
    }
};

} // namespace nubble
