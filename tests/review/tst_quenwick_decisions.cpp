#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>

#include "review/ReviewWorld.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class QuenwickDecisionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_world.emplace(); }
    void cleanup() { m_world.reset(); }

    void aDecisionIsShownBeforeItIsTaken()
    {
        m_world->openLive(3, {"a", "b"});
        m_world->monitor->perform(ReviewAction::Approve, ReviewWorld::item(u"a"_s));
        QCOMPARE(m_world->shown(), u"live 2: b [mail:a]"_s);
        m_world->monitor->perform(ReviewAction::Dismiss, ReviewWorld::item(u"a"_s)); // is busy
        m_world->monitor->perform(ReviewAction::Dismiss, ReviewWorld::item(u"b"_s));
        QCOMPARE(m_world->shown(), u"live 1: [mail:a mail:b]"_s);
        QTRY_COMPARE(m_world->server.requestsFor("/api/decide").size(), 2);
        QCOMPARE(
            m_world->server.requestsFor("/api/decide"),
            (QByteArrayList{
                R"(POST /api/decide {"guid":"a","source":"mail","status":"approved"})",
                R"(POST /api/decide {"guid":"b","source":"mail","status":"dismissed"})"}));
        QCOMPARE(m_world->afterRefresh(), u"live 3: a b [mail:a mail:b]"_s); // as Quenwick still has it

        m_world->server.answer("/api/decide", "{}");
        m_world->server.answer("/api/notch", ReviewWorld::inbox(2, {"c"}));
        m_world->monitor->perform(ReviewAction::Approve, ReviewWorld::item(u"c"_s));
        QTRY_COMPARE(m_world->shown(), u"live 2: c [mail:a mail:b] Approved"_s); // and it did not take
    }

    void whatQuenwickSaysOfADecisionIsShown()
    {
        using Row = std::pair<QuenwickServer::Script, QString>;
        m_world->openLive(2, {"a", "b"});
        for (const auto &[script, message] : {
                 Row{QuenwickServer::whole("{}"), u"Dismissed"_s},
                 Row{QuenwickServer::whole(R"({"error":"Mail is offline"})"), u"Mail is offline"_s},
                 Row{QuenwickServer::whole(R"({"error":"Taken"})", "409 Conflict"), u"Taken"_s},
                 Row{QuenwickServer::whole("{\"error\":\"" + QByteArray(9000, 'x') + "\"}"),
                     u"x"_s.repeated(500)},
                 Row{QuenwickServer::whole("{}", "500 Oh"), u"Quenwick didn't answer — try again"_s},
                 Row{QuenwickServer::whole("no"), u"Quenwick didn't answer — try again"_s},
                 Row{QuenwickServer::Script(QuenwickServer::reset), u"Quenwick didn't answer — try again"_s},
             }) {
            m_world->server.on("/api/decide", script);
            m_world->monitor->perform(ReviewAction::Dismiss, ReviewWorld::item(u"a"_s));
            QTRY_COMPARE(m_world->shown(), u"live 2: a b " + message);
        }
        m_world->server.answer(
            "/api/notch", ReviewWorld::inbox(1, {"b"})); // it took, although there was no answer
        m_world->monitor->perform(ReviewAction::Dismiss, ReviewWorld::item(u"a"_s));
        QTRY_COMPARE(m_world->shown(), u"live 1: b Dismissed"_s);
        QTRY_VERIFY(!m_world->monitor->isRefreshing());
        m_world->server.answer("/api/notch", ReviewWorld::inbox(2, {"a", "b"}));
        QCOMPARE(m_world->afterRefresh(), u"live 2: a b Dismissed"_s); // another one by then
    }

    void aDecisionThatQuenwickDoesNotSurviveIsUndone()
    {
        m_world->addRow("a", "2026-09-22T00:00:00Z");
        m_world->server.on("/api/notch", QuenwickServer::reset);
        m_world->goLive();
        m_world->open();
        QTRY_COMPARE(m_world->shown(), u"closed 1: a"_s); // as the interface does not answer yet
        m_world->afterRefresh();
        m_world->server.answer("/api/notch", ReviewWorld::inbox(1, {"a"}));
        QCOMPARE(m_world->afterRefresh(), u"live 1: a"_s);
        m_world->server.on("/api/decide", [this](QTcpSocket &socket) {
            m_world->processes.alive.clear();
            socket.abort();
        });
        m_world->monitor->perform(ReviewAction::Approve, ReviewWorld::item(u"a"_s));
        QTRY_COMPARE(m_world->shown(), u"closed 1: a Quenwick didn't answer — try again"_s);
    }

    void aListThatIsOlderThanADecisionsEndIsDropped()
    {
        m_world->openLive(1, {"a"});
        QTRY_VERIFY(!m_world->monitor->isRefreshing());
        QTcpSocket *list = nullptr;
        m_world->server.on("/api/notch", [&](QTcpSocket &socket) { list = &socket; });
        m_world->monitor->refresh();
        QTRY_VERIFY(list);
        m_world->server.on("/api/decide", [&](QTcpSocket &socket) {
            QuenwickServer::whole(ReviewWorld::inbox(1, {"a"}))(*list);
            list->flush();
            m_world->server.answer("/api/notch", ReviewWorld::inbox(0, {}));
            socket.abort(); // so that both are found at once, the list first
        });
        m_world->monitor->perform(ReviewAction::Approve, ReviewWorld::item(u"a"_s));
        QTRY_COMPARE(m_world->shown(), u"live 0: Approved"_s);
    }

    void theCalendarIsLeftToQuenwick()
    {
        m_world->openLive(1, {"a"});
        m_world->server.answer("/api/focus", "{}");
        for (const QuenwickServer::Script &script :
             {QuenwickServer::whole("{}"), QuenwickServer::Script(QuenwickServer::reset)}) {
            m_world->server.on("/api/focus", script);
            m_world->opened.clear();
            m_world->monitor->perform(ReviewAction::Calendar, ReviewWorld::item(u"a"_s));
            QCOMPARE(m_world->opened, QStringList());
            QTRY_COMPARE(m_world->opened, QStringList(u"com.brevandel.quenwick 4242"_s));
            QCOMPARE(m_world->shown(), u"live 1: a Opening it in Quenwick"_s);
        }
        QCOMPARE(
            m_world->server.requestsFor("/api/focus").last(),
            R"(POST /api/focus {"action":"schedule","guid":"a","source":"mail"})");
    }

    void whatIsScheduledAtOnceIsApproved()
    {
        m_world->openLive(1, {"a"});
        m_world->server.answer("/api/schedule", R"({"error":"No calendar"})");
        m_world->monitor->schedule(ReviewWorld::item(u"a"_s));
        QCOMPARE(m_world->shown(), u"live 0: [mail:a]"_s);
        QTRY_COMPARE(m_world->shown(), u"live 1: a No calendar"_s);
        QVERIFY(m_world->server.requestsFor("/api/decide").isEmpty());
        m_world->server.answer("/api/schedule", R"({"how":"ics"})");
        m_world->server.answer("/api/decide", "{}");
        m_world->server.answer("/api/notch", ReviewWorld::inbox(0, {}));
        m_world->monitor->schedule(ReviewWorld::item(u"a"_s));
        QTRY_COMPARE(m_world->shown(), u"live 0: Opened in your calendar — confirm to save"_s);
        QCOMPARE(
            m_world->server.requestsFor("/api/schedule").last()
                + m_world->server.requestsFor("/api/decide").last(),
            R"(POST /api/schedule {"guid":"a","source":"mail","to":"calendar"})"
            R"(POST /api/decide {"guid":"a","source":"mail","status":"approved"})");
    }

    void aClosedQuenwickIsOpenedInstead()
    {
        m_world->addRow("a", "2026-09-22T00:00:00Z");
        m_world->open();
        QTRY_COMPARE(m_world->shown(), u"closed 1: a"_s);
        m_world->monitor->perform(ReviewAction::Approve, ReviewWorld::item(u"a"_s));
        m_world->isApplication = false;
        m_world->monitor->perform(ReviewAction::Calendar, ReviewWorld::item(u"a"_s));
        QCOMPARE(m_world->opened, QStringList({u"com.brevandel.quenwick"_s, u"com.brevandel.quenwick"_s}));
        QCOMPARE(m_world->shown(), u"closed 1: a"_s);
        m_world->server.answer("/api/notch", ReviewWorld::inbox(1, {"a"}));
        m_world->goLive();
        QCOMPARE(m_world->afterRefresh(), u"live 1: a"_s);
        m_world->opened.clear();
        m_world->monitor->openApp();
        QCOMPARE(
            m_world->opened,
            QStringList(
                {u"com.brevandel.quenwick 4242"_s,
                 u"http://127.0.0.1:"_s + QString::fromLatin1(m_world->port())}));
    }

    void aSearchForNewMessagesIsToldByWhatItFinds()
    {
        m_world->addRow("a", "");
        m_world->open();
        m_world->monitor->refreshNow(); // is not live
        QTRY_COMPARE(m_world->shown(), u"closed 1:"_s);
        m_world->openLive(1, {});
        m_world->monitor->refreshNow();
        m_world->monitor->refreshNow(); // is under way
        QCOMPARE(m_world->shown(), u"live checking 1:"_s);
        QTRY_COMPARE(m_world->server.requestsFor("/api/scan"), QByteArrayList{"POST /api/scan {}"});
        m_world->open();
        QTRY_COMPARE(m_world->shown(), u"live 1:"_s);
        using Row = std::pair<QuenwickServer::Script, QString>;
        for (const auto &[script, message] :
             {Row{QuenwickServer::whole(R"({"added":2})"), u"2 new"_s},
              Row{QuenwickServer::whole("{}"), u"Up to date"_s},
              Row{QuenwickServer::whole(R"({"error":"Mail is offline"})"), u"Mail is offline"_s},
              Row{QuenwickServer::Script(QuenwickServer::end), u"Up to date"_s}}) {
            m_world->server.on("/api/scan", script);
            m_world->monitor->refreshNow();
            QTRY_COMPARE(m_world->shown(), u"live 1: " + message);
        }
    }

    void itCanGoInTheMiddleOfARequest()
    {
        m_world->openLive(1, {"a"});
        m_world->monitor->perform(ReviewAction::Approve, ReviewWorld::item(u"a"_s));
        m_world->monitor->refreshNow();
        QTRY_VERIFY(!m_world->server.requestsFor("/api/scan").isEmpty());
        m_world->monitor.reset();
        QCoreApplication::processEvents();
    }

private:
    std::optional<ReviewWorld> m_world;
};

QTEST_GUILESS_MAIN(QuenwickDecisionsTest)
#include "tst_quenwick_decisions.moc"
