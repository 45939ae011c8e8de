#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>

#include "Review/QuenwickMonitor.h"
#include "review/Quenwick.h"
#include "review/QuenwickServer.h"
#include "support/FakeProcessTable.h"
#include "support/ManualClock.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr pid_t quenwickProcess = 4242;

// "PENDING: guid… [busy id…] message", with what holds in front.
QString printed(const ReviewState &state)
{
    QString text = state.live ? u"live "_s : u"closed "_s;
    if (!state.installed)
        text += u"missing "_s;
    if (state.checking)
        text += u"checking "_s;
    text += QString::number(state.inbox.pending) + u':';
    for (const QuenwickItem &each : state.inbox.items)
        text += u' ' + each.guid;
    QStringList busy(state.busy.begin(), state.busy.end());
    busy.sort();
    if (!busy.isEmpty())
        text += u" [" + busy.join(u' ') + u']';
    return state.lastMessage ? text + u' ' + *state.lastMessage : text;
}

QuenwickItem item(const QString &guid)
{
    return {.guid = guid, .source = u"mail"_s};
}

// Of items of the source "mail".
QByteArray inbox(int pending, const QByteArrayList &guids)
{
    QByteArrayList items;
    for (const QByteArray &each : guids)
        items.append("{\"guid\":\"" + each + "\",\"source\":\"mail\"}");
    return "{\"pending\":" + QByteArray::number(pending) + ",\"items\":[" + items.join(',') + "]}";
}

} // namespace

class QuenwickMonitorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home.emplace();
        m_clock = ManualClock(); // 2026-09-21T14:13:20Z
        m_processes.alive = {quenwickProcess};
        m_server = std::make_unique<QuenwickServer>();
        m_opened.clear();
        m_isApplication = true;
        setTimeZone("UTC");
    }
    void cleanup()
    {
        m_monitor.reset();
        qunsetenv("TZ");
    }

    void theDatabaseIsReadWhileQuenwickIsClosed()
    {
        open();
        QCOMPARE(shown(), u"closed missing 0:"_s);
        QVERIFY(!m_monitor->isRefreshing());
        addRow("a", "2026-09-21T00:00:00Z");
        addRow("b", "2026-09-20T23:59:59Z");
        addRow("c", "");
        m_monitor->refresh();
        QCOMPARE(shown(), u"closed 0:"_s); // which is known at once
        QTRY_COMPARE(shown(), u"closed 2: a"_s);
        QFile::remove(databasePath());
        QCOMPARE(afterRefresh(), u"closed missing 2: a"_s);
    }

    void theDayIsTheUsers()
    {
        addRow("a", "2026-09-21T12:00:00Z");
        addRow("b", "2026-09-21T21:00:00Z");
        open();
        QTRY_COMPARE(shown(), u"closed 2: a b"_s);
        setTimeZone("Asia/Tokyo"); // tomorrow has begun there at 15:00
        QCOMPARE(afterRefresh(), u"closed 2: a b"_s);
        m_clock.advance(1h);
        QCOMPARE(afterRefresh(), u"closed 1: b"_s);
        setTimeZone("America/New_York");
        QCOMPARE(afterRefresh(), u"closed 2: a b"_s);
    }

    void anUnchangedDatabaseIsNotReadAgain()
    {
        addRow("a", "2026-09-21T20:00:00Z");
        open();
        QTRY_COMPARE(shown(), u"closed 1: a"_s);
        afterRefresh(); // not before the second time it counts as unchanged
        struct stat before { };
        QCOMPARE(::stat(QFile::encodeName(databasePath()).constData(), &before), 0);
        database().run("UPDATE review SET guid = 'b'");
        const std::array<timespec, 2> times{before.st_atim, before.st_mtim};
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(databasePath()).constData(), times.data(), 0), 0);
        QCOMPARE(afterRefresh(), u"closed 1: a"_s);
        QFile::remove(databasePath() + u"-wal");
        m_clock.advance(24h);
        QCOMPARE(afterRefresh(), u"closed 0:"_s);
        m_clock.advance(-24h);
        QCOMPARE(afterRefresh(), u"closed 1: b"_s);
        database().run("PRAGMA journal_mode = wal");
        const QuenwickConnection quenwick = database();
        quenwick.add("'c', 'm', '', '', '', '2026-09-22T00:00:00Z', 0, 'pending'"); // in the log
        QCOMPARE(afterRefresh(), u"closed 2: b c"_s);
    }

    void aReadingThatFailedIsTriedAgain()
    {
        addRow("a", "2026-09-21T20:00:00Z");
        open();
        QTRY_COMPARE(shown(), u"closed 1: a"_s);
        addRow("b", "2026-09-21T20:00:00Z");
        const QuenwickConnection quenwick = database();
        quenwick.run("BEGIN EXCLUSIVE");
        for (int i = 0; i < 2; ++i)
            QCOMPARE(afterRefresh(), u"closed 1: a"_s);
        quenwick.run("ROLLBACK"); // which changes nothing
        QCOMPARE(afterRefresh(), u"closed 2: a b"_s);
    }

    void theInterfaceIsAskedWhileItAnswers()
    {
        addRow("z", "2026-09-22T00:00:00Z");
        m_server->answer("/api/notch", inbox(3, {}));
        goLive();
        open();
        QTRY_COMPARE(shown(), u"live 3:"_s);
        m_server->answer("/api/notch", inbox(7, {"b", "a"}));
        QCOMPARE(afterRefresh(), u"live 7: b a"_s);
        m_processes.alive.clear(); // crashed, and live.json left behind
        const auto asked = m_server->requests().size();
        QCOMPARE(afterRefresh(), u"closed 1: z"_s);
        QCOMPARE(m_server->requests().size(), asked);
    }

    void anInterfaceThatFailsIsReplacedByTheDatabase()
    {
        addRow("z", "2026-09-22T00:00:00Z");
        goLive();
        QuenwickServer elsewhere;
        const QByteArray there =
            "http://127.0.0.1:" + QByteArray::number(elsewhere.serverPort()) + "/api/notch";
        for (const QuenwickServer::Script &script : {
                 QuenwickServer::Script(),
                 QuenwickServer::Script(QuenwickServer::reset),
                 QuenwickServer::Script(QuenwickServer::end),
                 QuenwickServer::whole(inbox(1, {"a"}), "500 Oh"),
                 QuenwickServer::bytesAndEnd(
                     "HTTP/1.1 302 Found\r\nLocation: " + there + "\r\n\r\n" + inbox(1, {"a"})),
                 QuenwickServer::whole("[]"),
                 QuenwickServer::whole("<html>"),
                 QuenwickServer::whole(inbox(1, {QByteArray(50'000'000, 'a')})),
             }) {
            m_server->answer("/api/notch", inbox(3, {"a"}));
            open();
            QTRY_COMPARE(shown(), u"live 3: a"_s);
            m_server->on("/api/notch", script);
            if (!script)
                open({.time = 20ms});
            QCOMPARE(afterRefresh(), u"closed 1: z"_s);
        }
        QVERIFY(elsewhere.requests().isEmpty());
        m_server->close();
        QCOMPARE(afterRefresh(), u"closed 1: z"_s);
    }

    void aLiveFileThatIsNoneIsLeftAlone()
    {
        addRow("z", "2026-09-22T00:00:00Z");
        m_server->answer("/api/notch", inbox(3, {}));
        const QString path = goLive();
        open();
        QTRY_COMPARE(shown(), u"live 3:"_s);
        const auto expectClosed = [&] {
            QCOMPARE(afterRefresh(), u"closed 1: z"_s);
            QVERIFY(QFile::remove(path) || QDir().rmdir(path));
            goLive();
            QCOMPARE(afterRefresh(), u"live 3:"_s);
        };
        QVERIFY(QFile::resize(path, 1'000'000'000));
        expectClosed();
        QFile::remove(path);
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        expectClosed();
        QFile::remove(path);
        QDir().mkdir(path);
        expectClosed();
        QFile::remove(path);
        QFile::link(path, path);
        expectClosed();
        m_home->write(u".config/Quenwick/live.json"_s, R"({"port":)" + port());
        expectClosed();
        m_home->write(
            u".config/Quenwick/live.json"_s, R"({"pid":1,"port":)" + port() + '}'); // somebody else's
        expectClosed();
    }

    void aDecisionIsShownBeforeItIsTaken()
    {
        openLive(3, {"a", "b"});
        m_monitor->perform(ReviewAction::Approve, item(u"a"_s));
        QCOMPARE(shown(), u"live 2: b [mail:a]"_s);
        m_monitor->perform(ReviewAction::Dismiss, item(u"a"_s)); // is busy
        m_monitor->perform(ReviewAction::Dismiss, item(u"b"_s));
        QCOMPARE(shown(), u"live 1: [mail:a mail:b]"_s);
        QTRY_COMPARE(m_server->requestsFor("/api/decide").size(), 2);
        QCOMPARE(
            m_server->requestsFor("/api/decide"),
            (QByteArrayList{
                R"(POST /api/decide {"guid":"a","source":"mail","status":"approved"})",
                R"(POST /api/decide {"guid":"b","source":"mail","status":"dismissed"})"}));
        QCOMPARE(afterRefresh(), u"live 3: a b [mail:a mail:b]"_s); // as Quenwick still has it

        m_server->answer("/api/decide", "{}");
        m_server->answer("/api/notch", inbox(2, {"c"}));
        m_monitor->perform(ReviewAction::Approve, item(u"c"_s));
        QTRY_COMPARE(shown(), u"live 2: c [mail:a mail:b] Approved"_s); // and it did not take
    }

    void whatQuenwickSaysOfADecisionIsShown()
    {
        using Row = std::pair<QuenwickServer::Script, QString>;
        openLive(2, {"a", "b"});
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
            m_server->on("/api/decide", script);
            m_monitor->perform(ReviewAction::Dismiss, item(u"a"_s));
            QTRY_COMPARE(shown(), u"live 2: a b " + message);
        }
        m_server->answer("/api/notch", inbox(1, {"b"})); // it took, although there was no answer
        m_monitor->perform(ReviewAction::Dismiss, item(u"a"_s));
        QTRY_COMPARE(shown(), u"live 1: b Dismissed"_s);
        QTRY_VERIFY(!m_monitor->isRefreshing());
        m_server->answer("/api/notch", inbox(2, {"a", "b"}));
        QCOMPARE(afterRefresh(), u"live 2: a b Dismissed"_s); // another one by then
    }

    void aDecisionThatQuenwickDoesNotSurviveIsUndone()
    {
        addRow("a", "2026-09-22T00:00:00Z");
        m_server->on("/api/notch", QuenwickServer::reset);
        goLive();
        open();
        QTRY_COMPARE(shown(), u"closed 1: a"_s); // as the interface does not answer yet
        afterRefresh();
        m_server->answer("/api/notch", inbox(1, {"a"}));
        QCOMPARE(afterRefresh(), u"live 1: a"_s);
        m_server->on("/api/decide", [this](QTcpSocket &socket) {
            m_processes.alive.clear();
            socket.abort();
        });
        m_monitor->perform(ReviewAction::Approve, item(u"a"_s));
        QTRY_COMPARE(shown(), u"closed 1: a Quenwick didn't answer — try again"_s);
    }

    void aListThatIsOlderThanADecisionsEndIsDropped()
    {
        openLive(1, {"a"});
        QTcpSocket *decision = nullptr;
        m_server->on("/api/decide", [&](QTcpSocket &socket) { decision = &socket; });
        m_monitor->perform(ReviewAction::Approve, item(u"a"_s));
        QTRY_VERIFY(decision);
        QTRY_VERIFY(!m_monitor->isRefreshing());
        m_server->on("/api/notch", [&](QTcpSocket &socket) {
            QuenwickServer::whole(inbox(1, {"a"}))(socket);
            socket.flush();
            decision->abort();
            m_server->answer("/api/notch", inbox(0, {}));
        });
        m_monitor->refresh();
        QTRY_COMPARE(shown(), u"live 0: Approved"_s);
    }

    void theCalendarIsLeftToQuenwick()
    {
        openLive(1, {"a"});
        m_server->answer("/api/focus", "{}");
        for (const QuenwickServer::Script &script :
             {QuenwickServer::whole("{}"), QuenwickServer::Script(QuenwickServer::reset)}) {
            m_server->on("/api/focus", script);
            m_opened.clear();
            m_monitor->perform(ReviewAction::Calendar, item(u"a"_s));
            QCOMPARE(m_opened, QStringList());
            QTRY_COMPARE(m_opened, QStringList(u"com.brevandel.quenwick 4242"_s));
            QCOMPARE(shown(), u"live 1: a Opening it in Quenwick"_s);
        }
        QCOMPARE(
            m_server->requestsFor("/api/focus").last(),
            R"(POST /api/focus {"action":"schedule","guid":"a","source":"mail"})");
    }

    void whatIsScheduledAtOnceIsApproved()
    {
        openLive(1, {"a"});
        m_server->answer("/api/schedule", R"({"error":"No calendar"})");
        m_monitor->schedule(item(u"a"_s));
        QCOMPARE(shown(), u"live 0: [mail:a]"_s);
        QTRY_COMPARE(shown(), u"live 1: a No calendar"_s);
        QVERIFY(m_server->requestsFor("/api/decide").isEmpty());
        m_server->answer("/api/schedule", R"({"how":"ics"})");
        m_server->answer("/api/decide", "{}");
        m_server->answer("/api/notch", inbox(0, {}));
        m_monitor->schedule(item(u"a"_s));
        QTRY_COMPARE(shown(), u"live 0: Opened in Calendar — confirm to save"_s);
        QCOMPARE(
            m_server->requestsFor("/api/schedule").last() + m_server->requestsFor("/api/decide").last(),
            R"(POST /api/schedule {"guid":"a","source":"mail","to":"calendar"})"
            R"(POST /api/decide {"guid":"a","source":"mail","status":"approved"})");
    }

    void aClosedQuenwickIsOpenedInstead()
    {
        addRow("a", "2026-09-22T00:00:00Z");
        open();
        QTRY_COMPARE(shown(), u"closed 1: a"_s);
        m_monitor->perform(ReviewAction::Approve, item(u"a"_s));
        m_isApplication = false;
        m_monitor->perform(ReviewAction::Calendar, item(u"a"_s));
        QCOMPARE(m_opened, QStringList({u"com.brevandel.quenwick"_s, u"com.brevandel.quenwick"_s}));
        QCOMPARE(shown(), u"closed 1: a"_s);
        m_server->answer("/api/notch", inbox(1, {"a"}));
        goLive();
        QCOMPARE(afterRefresh(), u"live 1: a"_s);
        m_opened.clear();
        m_monitor->openApp();
        QCOMPARE(
            m_opened,
            QStringList(
                {u"com.brevandel.quenwick 4242"_s, u"http://127.0.0.1:"_s + QString::fromLatin1(port())}));
    }

    void aSearchForNewMessagesIsToldByWhatItFinds()
    {
        addRow("a", "");
        open();
        m_monitor->refreshNow(); // is not live
        QTRY_COMPARE(shown(), u"closed 1:"_s);
        openLive(1, {});
        m_monitor->refreshNow();
        m_monitor->refreshNow(); // is under way
        QCOMPARE(shown(), u"live checking 1:"_s);
        QTRY_COMPARE(m_server->requestsFor("/api/scan"), QByteArrayList{"POST /api/scan {}"});
        open();
        QTRY_COMPARE(shown(), u"live 1:"_s);
        using Row = std::pair<QuenwickServer::Script, QString>;
        for (const auto &[script, message] :
             {Row{QuenwickServer::whole(R"({"added":2})"), u"2 new"_s},
              Row{QuenwickServer::whole("{}"), u"Up to date"_s},
              Row{QuenwickServer::whole(R"({"error":"Mail is offline"})"), u"Mail is offline"_s},
              Row{QuenwickServer::Script(QuenwickServer::end), u"Up to date"_s}}) {
            m_server->on("/api/scan", script);
            m_monitor->refreshNow();
            QTRY_COMPARE(shown(), u"live 1: " + message);
        }
    }

    void itPollsByItselfAndTellsOnlyOfChanges()
    {
        addRow("a", "2026-09-22T00:00:00Z");
        open();
        QTRY_COMPARE(shown(), u"closed 1: a"_s);
        const QSignalSpy changes(m_monitor.get(), &QuenwickMonitor::changed);
        for (int i = 0; i < 3; ++i)
            afterRefresh();
        m_server->answer("/api/notch", inbox(1, {"b"}));
        goLive();
        for (int i = 0; i < 3; ++i)
            afterRefresh();
        QCOMPARE(shown(), u"live 1: b"_s);
        QCOMPARE(changes.size(), 1);
        m_server->answer("/api/notch", inbox(1, {"c"}));
        auto *timer = m_monitor->findChild<QTimer *>();
        QCOMPARE(timer->intervalAsDuration(), 3s);
        timer->setInterval(1ms);
        QTRY_COMPARE(shown(), u"live 1: c"_s);
    }

    void itCanGoInTheMiddleOfARequest()
    {
        openLive(1, {"a"});
        m_monitor->perform(ReviewAction::Approve, item(u"a"_s));
        m_monitor->refreshNow();
        QTRY_VERIFY(!m_server->requestsFor("/api/scan").isEmpty());
        m_monitor.reset();
        QCoreApplication::processEvents();
    }

    void aSampleIsShownAndStaysAsItIs()
    {
        ReviewState sample{.inbox = {.pending = 2, .items = {item(u"a"_s)}}, .live = true};
        QuenwickMonitor monitor(sample);
        monitor.refreshNow();
        monitor.perform(ReviewAction::Approve, item(u"a"_s));
        QCOMPARE(printed(monitor.state()), u"live missing 2: a"_s);
    }

private:
    [[nodiscard]] QString databasePath() const { return m_home->path(u".config/Quenwick/review.db"_s); }
    [[nodiscard]] QByteArray port() const { return QByteArray::number(m_server->serverPort()); }
    QuenwickConnection database() const
    {
        QDir().mkpath(m_home->path(u".config/Quenwick"_s));
        QuenwickConnection quenwick(databasePath());
        quenwick.run(QuenwickConnection::schema);
        return quenwick;
    }
    void addRow(const QByteArray &guid, const QByteArray &due) const
    {
        database().add(
            '\'' + guid + "', 'mail', '', '', '', "
            + (due.isEmpty() ? QByteArray("NULL") : QByteArray("'" + due + "'")) + ", 0, 'pending'");
    }
    QString goLive() const
    {
        return m_home->write(u".config/Quenwick/live.json"_s, R"({"pid":4242,"port":)" + port() + '}');
    }
    void open(LoopbackRequest::Limits limits = {.time = 30s})
    {
        m_monitor = std::make_unique<QuenwickMonitor>(
            m_home->home(),
            QuenwickMonitor::Surroundings{
                .clock = m_clock,
                .processes = m_processes,
                .openApplication =
                    [this](const QString &identifier, std::optional<pid_t> process) {
                        m_opened.append(process ? identifier + u" %1"_s.arg(*process) : identifier);
                        return m_isApplication;
                    },
                .openUrl = [this](const QUrl &url) { m_opened.append(url.toString()); },
                .limits = limits});
    }
    void openLive(int pending, const QByteArrayList &guids)
    {
        database();
        m_server->answer("/api/notch", inbox(pending, guids));
        goLive();
        open();
        QTRY_VERIFY(m_monitor->state().live);
    }
    [[nodiscard]] QString shown() const { return printed(m_monitor->state()); }
    QString afterRefresh() // the whole of one poll that begins now
    {
        if (!QTest::qWaitFor([this] { return !m_monitor->isRefreshing(); }))
            return u"no end"_s;
        m_monitor->refresh();
        return QTest::qWaitFor([this] { return !m_monitor->isRefreshing(); }) ? shown() : u"no end"_s;
    }
    static void setTimeZone(const char *name)
    {
        qputenv("TZ", name);
        ::tzset();
    }

    std::optional<TemporaryHome> m_home;
    ManualClock m_clock;
    FakeProcessTable m_processes;
    std::unique_ptr<QuenwickServer> m_server;
    QStringList m_opened;
    bool m_isApplication = true;
    std::unique_ptr<QuenwickMonitor> m_monitor;
};

QTEST_GUILESS_MAIN(QuenwickMonitorTest)
#include "tst_quenwick_monitor.moc"
