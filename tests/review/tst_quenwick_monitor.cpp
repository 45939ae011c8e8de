#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <sys/stat.h>

#include "Review/ReviewReader.h"
#include "review/ReviewWorld.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class QuenwickMonitorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_world.emplace(); }
    void cleanup() { m_world.reset(); }

    void theDatabaseIsReadWhileQuenwickIsClosed()
    {
        m_world->open();
        QCOMPARE(m_world->shown(), u"closed missing 0:"_s);
        QVERIFY(!m_world->monitor->isRefreshing());
        m_world->addRow("a", "2026-09-21T00:00:00Z");
        m_world->addRow("b", "2026-09-20T23:59:59Z");
        m_world->addRow("c", "");
        m_world->monitor->refresh();
        QCOMPARE(m_world->shown(), u"closed 0:"_s); // which is known at once
        QTRY_COMPARE(m_world->shown(), u"closed 2: a"_s);
        QFile::remove(m_world->databasePath());
        QCOMPARE(m_world->afterRefresh(), u"closed missing 2: a"_s);
    }

    void theDayIsTheUsers()
    {
        m_world->addRow("a", "2026-09-21T12:00:00Z");
        m_world->addRow("b", "2026-09-21T21:00:00Z");
        m_world->open();
        QTRY_COMPARE(m_world->shown(), u"closed 2: a b"_s);
        m_world->setTimeZone("Asia/Tokyo"); // tomorrow has begun there at 15:00
        QCOMPARE(m_world->afterRefresh(), u"closed 2: a b"_s);
        m_world->clock.advance(1h);
        QCOMPARE(m_world->afterRefresh(), u"closed 1: b"_s);
        m_world->setTimeZone("America/New_York");
        QCOMPARE(m_world->afterRefresh(), u"closed 2: a b"_s);
    }

    void anUnchangedDatabaseIsNotReadAgain()
    {
        m_world->addRow("a", "2026-09-21T20:00:00Z");
        ReviewReader reader(QFileInfo(m_world->databasePath()).path(), m_world->processes);
        const QDateTime today = QDateTime::fromString(u"2026-09-21T00:00:00Z"_s, Qt::ISODate);
        const auto read = [&](const QDateTime &day) { // how many items, or that nothing was read
            const auto inbox = reader.look(day, false, {}).inbox;
            return inbox ? int(inbox->items.size()) : -1;
        };
        QCOMPARE(read(today), 1);
        QCOMPARE(read(today), 1); // as it may be written while it is read first
        QCOMPARE(read(today), -1);
        m_world->database().run("UPDATE review SET guid = 'b'"); // of the same size
        QCOMPARE(read(today), 1);
        QCOMPARE(read(today.addDays(1)), 0);
        QCOMPARE(read(today), 1);
        m_world->database().run("PRAGMA journal_mode = wal");
        const QuenwickConnection quenwick = m_world->database();
        quenwick.add("'c', 'm', '', '', '', '2026-09-22T00:00:00Z', 0, 'pending'"); // in the log
        QCOMPARE(read(today), 2);
        read(today);
        quenwick.add("'d', 'm', '', '', '', '2026-09-23T00:00:00Z', 0, 'pending'");
        QCOMPARE(read(today), 3);
    }

    void aReadingThatFailedIsTriedAgain()
    {
        m_world->addRow("a", "2026-09-21T20:00:00Z");
        m_world->open();
        QTRY_COMPARE(m_world->shown(), u"closed 1: a"_s);
        m_world->addRow("b", "2026-09-21T20:00:00Z");
        const QuenwickConnection quenwick = m_world->database();
        quenwick.run("BEGIN EXCLUSIVE");
        for (int i = 0; i < 2; ++i)
            QCOMPARE(m_world->afterRefresh(), u"closed 1: a"_s);
        quenwick.run("ROLLBACK"); // which changes nothing
        QCOMPARE(m_world->afterRefresh(), u"closed 2: a b"_s);
    }

    void theInterfaceIsAskedWhileItAnswers()
    {
        m_world->addRow("z", "2026-09-22T00:00:00Z");
        m_world->server.answer("/api/notch", ReviewWorld::inbox(3, {}));
        m_world->goLive();
        m_world->open();
        QTRY_COMPARE(m_world->shown(), u"live 3:"_s);
        m_world->server.answer("/api/notch", ReviewWorld::inbox(7, {"b", "a"}));
        QCOMPARE(m_world->afterRefresh(), u"live 7: b a"_s);
        m_world->processes.alive.clear(); // crashed, and live.json left behind
        const auto asked = m_world->server.requests().size();
        QCOMPARE(m_world->afterRefresh(), u"closed 1: z"_s);
        QCOMPARE(m_world->server.requests().size(), asked);
    }

    void anInterfaceThatFailsIsReplacedByTheDatabase()
    {
        m_world->addRow("z", "2026-09-22T00:00:00Z");
        m_world->goLive();
        QuenwickServer elsewhere;
        const QByteArray there =
            "http://127.0.0.1:" + QByteArray::number(elsewhere.serverPort()) + "/api/notch";
        for (const QuenwickServer::Script &script : {
                 QuenwickServer::Script(),
                 QuenwickServer::Script(QuenwickServer::reset),
                 QuenwickServer::Script(QuenwickServer::end),
                 QuenwickServer::whole(ReviewWorld::inbox(1, {"a"}), "500 Oh"),
                 QuenwickServer::bytesAndEnd(
                     "HTTP/1.1 302 Found\r\nLocation: " + there + "\r\n\r\n" + ReviewWorld::inbox(1, {"a"})),
                 QuenwickServer::whole("[]"),
                 QuenwickServer::whole("<html>"),
                 QuenwickServer::whole(ReviewWorld::inbox(1, {QByteArray(50'000'000, 'a')})),
             }) {
            m_world->server.answer("/api/notch", ReviewWorld::inbox(3, {"a"}));
            m_world->open();
            QTRY_COMPARE(m_world->shown(), u"live 3: a"_s);
            m_world->server.on("/api/notch", script);
            if (!script)
                m_world->open({.time = 20ms});
            QCOMPARE(m_world->afterRefresh(), u"closed 1: z"_s);
        }
        QVERIFY(elsewhere.requests().isEmpty());
        m_world->server.close();
        QCOMPARE(m_world->afterRefresh(), u"closed 1: z"_s);
    }

    void aLiveFileThatIsNoneIsLeftAlone()
    {
        m_world->addRow("z", "2026-09-22T00:00:00Z");
        m_world->server.answer("/api/notch", ReviewWorld::inbox(3, {}));
        const QString path = m_world->goLive();
        m_world->open();
        QTRY_COMPARE(m_world->shown(), u"live 3:"_s);
        const auto write = [&](const QByteArray &before, const QByteArray &behind) {
            m_world->home.write(u".config/Quenwick/live.json"_s, before + m_world->port() + behind);
        };
        const std::function<void()> ways[]{
            [&] { m_world->goLive(), QFile::resize(path, 1'000'000'000); },
            [&] { ::mkfifo(QFile::encodeName(path).constData(), 0600); },
            [&] { QDir().mkdir(path); },
            [&] { QFile::link(path, path); },
            [&] { write(R"({"pid":4242,"port":)", ""); },
            [&] { write(R"({"pid":1,"port":)", "}"); }}; // somebody else's
        for (const auto &make : ways) {
            QFile::remove(path);
            make();
            QCOMPARE(m_world->afterRefresh(), u"closed 1: z"_s);
            QVERIFY(QFile::remove(path) || QDir().rmdir(path));
            m_world->goLive();
            QCOMPARE(m_world->afterRefresh(), u"live 3:"_s);
        }
    }

    void itPollsByItselfAndTellsOnlyOfChanges()
    {
        m_world->addRow("a", "2026-09-22T00:00:00Z");
        m_world->open();
        QTRY_COMPARE(m_world->shown(), u"closed 1: a"_s);
        const QSignalSpy changes(m_world->monitor.get(), &QuenwickMonitor::changed);
        for (int i = 0; i < 3; ++i)
            m_world->afterRefresh();
        m_world->server.answer("/api/notch", ReviewWorld::inbox(1, {"b"}));
        m_world->goLive();
        for (int i = 0; i < 3; ++i)
            m_world->afterRefresh();
        QCOMPARE(m_world->shown(), u"live 1: b"_s);
        QCOMPARE(changes.size(), 1);
        m_world->server.answer("/api/notch", ReviewWorld::inbox(1, {"c"}));
        auto *timer = m_world->monitor->findChild<QTimer *>();
        QCOMPARE(timer->intervalAsDuration(), 3s);
        timer->setInterval(1ms);
        QTRY_COMPARE(m_world->shown(), u"live 1: c"_s);
    }

    void aSampleIsShownAndStaysAsItIs()
    {
        ReviewState sample{.inbox = {.pending = 2, .items = {ReviewWorld::item(u"a"_s)}}, .live = true};
        QuenwickMonitor monitor(sample);
        monitor.refreshNow();
        monitor.perform(ReviewAction::Approve, ReviewWorld::item(u"a"_s));
        QCOMPARE(ReviewWorld::printed(monitor.state()), u"live missing 2: a"_s);
    }

private:
    std::optional<ReviewWorld> m_world;
};

QTEST_GUILESS_MAIN(QuenwickMonitorTest)
#include "tst_quenwick_monitor.moc"
