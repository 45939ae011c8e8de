#include "Review/LoopbackRequest.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Platform/MainThread.h"

namespace nubble {

namespace {

QByteArray requestFor(quint16 port, const QByteArray &path, const std::optional<QByteArray> &json)
{
    const QByteArray host = "Host: 127.0.0.1:" + QByteArray::number(port) + "\r\n";
    const QByteArray common = host + "Accept: application/json\r\nConnection: close\r\n";
    if (!json)
        return "GET " + path + " HTTP/1.1\r\n" + common + "\r\n";
    return "POST " + path + " HTTP/1.1\r\n" + common + "Content-Type: application/json\r\nContent-Length: "
        + QByteArray::number(json->size()) + "\r\n\r\n" + *json;
}

bool isWaiting(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace

LoopbackRequest::LoopbackRequest(
    quint16 port, const QByteArray &path, const std::optional<QByteArray> &json, Limits limits,
    QObject *parent)
    : QObject(parent), m_unsent(requestFor(port, path, json)), m_answer(limits.body)
{
    assertMainThread("Nubble/Review/LoopbackRequest");
    m_patience.setSingleShot(true);
    m_patience.callOnTimeout(this, &LoopbackRequest::finish);
    m_patience.start(limits.time);
    connectTo(port);
}

LoopbackRequest::~LoopbackRequest()
{
    // They watch it.
    m_writable.reset();
    m_readable.reset();
    if (m_socket >= 0)
        ::close(m_socket);
}

void LoopbackRequest::connectTo(quint16 port)
{
    m_socket = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool isBegun = m_socket >= 0
        && (::connect(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0
            || errno == EINPROGRESS);
    if (!isBegun) {
        m_patience.start(0);
        return;
    }
    m_writable = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Write);
    m_readable = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_writable.get(), &QSocketNotifier::activated, this, &LoopbackRequest::send);
    connect(m_readable.get(), &QSocketNotifier::activated, this, &LoopbackRequest::receive);
}

void LoopbackRequest::send()
{
    const ssize_t count =
        ::send(m_socket, m_unsent.constData(), static_cast<size_t>(m_unsent.size()), MSG_NOSIGNAL);
    if (count >= 0)
        m_unsent.remove(0, count);
    // A server may answer, and close, before it has read everything: its answer counts.
    if (m_unsent.isEmpty() || (count < 0 && !isWaiting(errno)))
        m_writable->setEnabled(false);
}

void LoopbackRequest::receive()
{
    std::array<char, 16'384> buffer{};
    const ssize_t count = ::recv(m_socket, buffer.data(), buffer.size(), 0);
    if (count < 0 && isWaiting(errno))
        return;
    if (count > 0)
        m_answer.append(QByteArrayView(buffer.data(), count));
    else if (count == 0)
        m_answer.end();
    if (count < 0 || m_answer.state() != HttpAnswer::State::Arriving)
        finish();
}

void LoopbackRequest::finish()
{
    m_patience.stop();
    for (const auto &notifier : {m_writable.get(), m_readable.get()})
        if (notifier)
            notifier->setEnabled(false);
    const bool isWhole = m_answer.state() == HttpAnswer::State::Whole;
    Q_EMIT finished(isWhole ? std::optional(HttpReply{m_answer.status(), m_answer.body()}) : std::nullopt);
}

} // namespace nubble
