#include <QSignalSpy>
#include <QTest>

#include <sys/resource.h>

#include "Review/LoopbackRequest.h"
#include "review/QuenwickServer.h"

using namespace nubble;
using namespace std::chrono_literals;

namespace {

QByteArray printed(const std::optional<HttpReply> &reply)
{
    return reply ? QByteArray(QByteArray::number(reply->status) + ' ' + reply->body) : "none";
}

// "STATUS BODY", or "broken", or "arriving"; the pieces have that size.
QByteArray put(const QByteArray &bytes, qsizetype pieces, bool ends)
{
    HttpAnswer answer(8);
    for (qsizetype at = 0; at < bytes.size(); at += pieces)
        answer.append(bytes.mid(at, pieces));
    if (ends)
        answer.end();
    if (answer.state() == HttpAnswer::State::Whole)
        return printed(HttpReply{answer.status(), answer.body()});
    return answer.state() == HttpAnswer::State::Broken ? "broken" : "arriving";
}

} // namespace

class LoopbackRequestTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anAnswerIsPutTogetherFromItsPieces()
    {
        const QByteArray ok = "HTTP/1.1 200 OK\r\n";
        const QByteArray chunked = ok + "transfer-encoding: chunked\r\n\r\n";
        using Row = std::array<QByteArray, 3>; // bytes; while the connection is open; when it is closed
        for (const auto &[bytes, open, closed] : {
                 Row{ok + "Content-Length: 2\r\n\r\n{}", "200 {}", "200 {}"},
                 Row{ok + "content-length:  2 \r\nContent-Length: 2\r\n\r\n{}more", "200 {}", "200 {}"},
                 Row{ok + "Content-Length: 2\r\nContent-Length: 3\r\n\r\n{}", "broken", "broken"},
                 Row{ok + "Content-Length: 8\r\n\r\n1234567", "arriving", "broken"},
                 Row{ok + "Content-Length: 9\r\n\r\n", "broken", "broken"},
                 Row{ok + "Content-Length: 99999999999999999999\r\n\r\n", "broken", "broken"},
                 Row{ok + "Content-Length: -1\r\n\r\n", "broken", "broken"},
                 Row{ok + "Content-Length: +1\r\n\r\n{", "broken", "broken"},
                 Row{ok + "Content-Length: 0\r\n\r\n", "200 ", "200 "},
                 Row{ok + "\r\n{}", "arriving", "200 {}"},
                 Row{ok + "\r\n123456789", "broken", "broken"},
                 Row{"HTTP/1.0 500 \r\n\r\n", "arriving", "500 "},
                 Row{"HTTP/1.1 204\r\n\r\n", "204 ", "204 "},
                 Row{"HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 302 Found\r\nLocation: /\r\n\r\n", "arriving",
                     "302 "},
                 Row{chunked + "2\r\n{\"\r\n2 ; a=b\r\na\"\r\n0\r\nT: x\r\n\r\n", "200 {\"a\"", "200 {\"a\""},
                 Row{chunked + "A\r\n", "broken", "broken"},
                 Row{chunked + "4\r\n1234\r\n5\r\n", "broken", "broken"},
                 Row{chunked + "4\r\n12345\r\n", "broken", "broken"},
                 Row{chunked + "-1\r\n", "broken", "broken"},
                 Row{chunked + "0x2\r\n{}", "broken", "broken"},
                 Row{chunked + "\r\n", "broken", "broken"},
                 Row{chunked + "ffffffffffffffff\r\n", "broken", "broken"},
                 Row{chunked + "0\r\n", "arriving", "broken"},
                 Row{ok + "Transfer-Encoding: gzip, chunked\r\n\r\n", "broken", "broken"},
                 Row{"HTTP/1.1 abc\r\n\r\n", "broken", "broken"},
                 Row{"HTTP/1.1 099 No\r\n\r\n", "broken", "broken"},
                 Row{"GET / HTTP/1.1\r\n\r\n", "broken", "broken"},
                 Row{"HTTP/1.1 200 OK\n\n{}", "arriving", "broken"},
                 Row{ok + QByteArray(16'384, 'x') + "\r\n\r\n", "broken", "broken"},
                 Row{QByteArray(20'000, 'x'), "broken", "broken"},
                 Row{"", "arriving", "broken"},
             })
            for (const qsizetype pieces : {1, 7, 100'000}) {
                QCOMPARE(put(bytes, pieces, false), open);
                QCOMPARE(put(bytes, pieces, true), closed);
            }
    }

    void aRequestIsSentOnceAndItsAnswerRead()
    {
        QuenwickServer server;
        QuenwickServer elsewhere;
        const QByteArray ok = "HTTP/1.1 200 OK\r\n";
        const QByteArray other =
            "Location: http://127.0.0.1:" + QByteArray::number(elsewhere.serverPort()) + "/\r\n";
        using Row = std::pair<QuenwickServer::Script, QByteArray>;
        for (const auto &[script, reply] : {
                 Row{QuenwickServer::whole("{}"), "200 {}"},
                 Row{QuenwickServer::bytesAndEnd(ok + "\r\n{}"), "200 {}"},
                 Row{QuenwickServer::byteByByte(ok + "Content-Length: 2\r\n\r\n{}"), "200 {}"},
                 Row{QuenwickServer::whole("no", "500 Oh"), "500 no"},
                 Row{QuenwickServer::bytesAndEnd("HTTP/1.1 307 There\r\n" + other + "\r\n"), "307 "},
                 Row{QuenwickServer::reset, "none"},
                 Row{QuenwickServer::end, "none"},
                 Row{QuenwickServer::bytesAndEnd(ok + "Content-Length: 9\r\n\r\n{}"), "none"},
                 Row{QuenwickServer::bytes(ok + "\r\n" + QByteArray(50'000'000, 'x')), "none"},
                 Row{QuenwickServer::bytes(QByteArray(50'000'000, 'x')), "none"},
             }) {
            server.on("/a", script);
            const auto before = server.requests().size();
            QCOMPARE(replyFrom(server.serverPort(), {}), reply);
            QCOMPARE(server.requests().mid(before), QList<QByteArray>{"POST /a {\"b\":1}"});
        }
        QCOMPARE(elsewhere.requests().size(), 0);
    }

    void aRequestThatCannotBeMadeHasNoAnswer()
    {
        rlimit limit{};
        QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
        const rlimit none{.rlim_cur = 0, .rlim_max = limit.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &none);
        LoopbackRequest request(1, "/a", {}, {});
        ::setrlimit(RLIMIT_NOFILE, &limit);
        QSignalSpy finished(&request, &LoopbackRequest::finished);
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(printed(finished[0][0].value<std::optional<HttpReply>>()), "none");
    }

    void aServerThatDoesNotAnswerIsWaitedForSoLong()
    {
        QuenwickServer server; // which does nothing about it
        QCOMPARE(replyFrom(server.serverPort(), {.time = 50ms}), "none");
        QCOMPARE(server.requests().size(), 1);

        // Nobody accepts, and the kernel's queue for those that wait is full.
        QTcpServer silent;
        silent.setListenBacklogSize(0);
        QVERIFY(silent.listen(QHostAddress::LocalHost));
        silent.pauseAccepting();
        LoopbackRequest first(silent.serverPort(), "/a", {}, {});
        LoopbackRequest second(silent.serverPort(), "/a", {}, {});
        QCOMPARE(replyFrom(silent.serverPort(), {.time = 50ms}), "none");
        const quint16 port = silent.serverPort();
        silent.close();
        QCOMPARE(replyFrom(port, {}), "none"); // at once
    }

private:
    static QByteArray replyFrom(quint16 port, LoopbackRequest::Limits limits)
    {
        std::optional<QByteArray> reply;
        LoopbackRequest request(port, "/a", R"({"b":1})", limits);
        connect(
            &request, &LoopbackRequest::finished, &request, [&](const auto &each) { reply = printed(each); });
        return QTest::qWaitFor([&] { return reply.has_value(); }, 60'000) ? *reply : "no end";
    }
};

QTEST_GUILESS_MAIN(LoopbackRequestTest)
#include "tst_loopback_request.moc"
