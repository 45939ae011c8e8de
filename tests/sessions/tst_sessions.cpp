#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "Platform/Linux/LinuxFolderWatch.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Platform/Linux/LinuxProcessWatch.h"
#include "Sessions/ClaudeFolders.h"
#include "Sessions/SessionMonitor.h"
#include "Sessions/SessionParsing.h"
#include "Sessions/SessionTexts.h"
#include "Shell/Defaults.h"
#include "support/FakeProcessTable.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

class SessionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<TemporaryHome>();
        m_processes.alive = {7, 8, 9};
        m_monitor = monitor(m_processes);
    }

    void keepsAllNineFieldsOfWhichFiveMayBeAbsentOrNull()
    {
        const auto session =
            decodeSession(R"({"pid":7,"sessionId":"a","cwd":"/p","startedAt":1.5,"name":"n","status":"busy",
            "updatedAt":2500,"entrypoint":"cli","nameSource":"user","kind":{"unknown":[]},
            "procStart":7,"statusUpdatedAt":"7","waitingFor":[]})");
        const ClaudeSession expected{7, u"a"_s, u"/p"_s, 1.5, u"n"_s, u"busy"_s, 2500.0, u"cli"_s, u"user"_s};
        QCOMPARE(session, std::optional(expected));
        QCOMPARE(session->lastActivity(), 2500.0);

        const QByteArray required = R"({"pid":7,"sessionId":"a","cwd":"/p","startedAt":1000)";
        const auto bare = decodeSession(required + '}');
        QVERIFY(bare && !bare->status);
        QCOMPARE(bare->lastActivity(), 1000.0);
        const QByteArray nulls = R"(,"name":null,"status":null,"updatedAt":null,"entrypoint":null})";
        QCOMPARE(decodeSession(required + nulls), bare);
    }

    void rejectsWhatIsNoRecord()
    {
        for (const QByteArray wrong :
             {R"("pid":7.5)", R"("pid":"7")", R"("pid":2147483648)", R"("pid":1e999)", R"("pid":7,"name":[])",
              R"("pid":7,"updatedAt":"1")", "\"pid\":7,\"name\":\"no UTF-8 \xff\""})
            QVERIFY2(!decodeSession(R"({"sessionId":"a","startedAt":1,"cwd":"/",)" + wrong + '}'), wrong);
        QVERIFY(!decodeSession(R"({"pid":7,"sessionId":"without cwd","startedAt":1})"));
        QVERIFY(!decodeSession(recordJson(7, u"a"_s, u"idle"_s) + "y\"}")); // the old end behind new text
    }

    void aRowHasANameAndASymbol()
    {
        for (const auto &[keys, title, expected] :
             {std::tuple(R"("cwd":"/p/q","name":"Name","nameSource":"user")", "Title", u"Name"_s),
              {R"("cwd":"/p/q","name":"Name","nameSource":"derived")", "Title", u"Title"_s},
              {R"("cwd":"/p/q","name":"Name")", "Title", u"Name"_s},
              {R"("cwd":"/p/q","name":"Name","nameSource":"derived")", nullptr, u"Name"_s},
              {R"("cwd":"/p/q r/","name":"","nameSource":"user")", nullptr, u"q r"_s},
              {R"("cwd":"/")", nullptr, u"/"_s}}) {
            auto session =
                decodeSession(R"({"pid":7,"sessionId":"a","startedAt":1,)" + QByteArray(keys) + '}');
            const auto known = title ? std::optional(QString::fromUtf8(title)) : std::nullopt;
            QCOMPARE(rowTitle(*session, {known, std::nullopt}), expected);
            QCOMPARE(rowSymbol(*session), u"terminal"_s);
            session->entrypoint = u"claude-desktop"_s;
            QCOMPARE(rowSymbol(*session), u"macwindow"_s);
        }
    }

    void saysHowLongAgo()
    {
        constexpr double now = 1'790'000'000'000;
        using Row = std::pair<double, QString>;
        for (const auto &[seconds, text] :
             {Row(-1e300, u"just now"_s), Row(59.999, u"just now"_s), Row(60, u"1m ago"_s),
              Row(3599, u"59m ago"_s), Row(3600, u"1h ago"_s), Row(86399, u"23h ago"_s),
              Row(86400, u"1d ago"_s), Row(1e300, u"11594791d ago"_s), Row(qQNaN(), u"just now"_s)})
            QCOMPARE(elapsedText(timePointOf(now - seconds * 1000), timePointOf(now)), text);
    }

    void seesARewriteOfTheSameSizeWithinOneTick()
    {
        QCOMPARE(after(7, u"a"_s, u"busy"_s), u"working"_s);
        const QByteArray path = QFile::encodeName(fileOf(7));
        struct stat before { };
        QCOMPARE(::stat(path, &before), 0);
        put(7, recordJson(7, u"a"_s, u"idle"_s));
        const timespec times[]{before.st_atim, before.st_mtim};
        QCOMPARE(::utimensat(AT_FDCWD, path, times, 0), 0);
        QCOMPARE(refreshed(), u"completed: a"_s);
    }

    void emptiesWithTheFolderAndFillsAgainByItself()
    {
        QCOMPARE(after(7, u"a"_s, u"busy"_s), u"working"_s);
        QVERIFY(QDir(m_home->path(u"sessions"_s)).removeRecursively());
        QCOMPARE(refreshed(), u"idle"_s);
        put(7, recordJson(7, u"a"_s, u"busy"_s));
        QTRY_COMPARE(ids(), QStringList{u"a"_s});
    }

    void showsACompletionForTwoMinutes()
    {
        QSignalSpy changed(m_monitor.get(), &SessionMonitor::recentlyCompletedChanged);
        QCOMPARE(after(7, u"a"_s, u"busy"_s), u"working"_s);
        QCOMPARE(after(7, u"a"_s, QString()), u"completed: a"_s);
        m_clock.advance(119999ms);
        QCOMPARE(after(7, u"a"_s, u"busy"_s), u"working: a"_s);
        m_clock.advance(1ms);
        QCOMPARE(refreshed(), u"working"_s);
        QCOMPARE(changed.count(), 2);
    }

    void waitsAsLongAsASessionDoesWhateverTheOthersDo()
    {
        QCOMPARE(after(7, u"a"_s, u"busy"_s), u"working"_s);
        QCOMPARE(after(7, u"a"_s, u"waiting"_s), u"waiting"_s); // not finished
        QCOMPARE(m_monitor->runState(m_monitor->sessions().first()), RunState::Waiting);
        QCOMPARE(after(8, u"b"_s, u"busy"_s), u"working and waiting"_s);
        QCOMPARE(after(7, u"a"_s, u"Waiting"_s), u"working: a"_s); // no word that is known
    }

    void knowsARunThatItHasMissedByItsTime()
    {
        const auto at = [this](int time, const QByteArray &more) {
            put(7,
                R"({"pid":7,"sessionId":"a","cwd":"/","startedAt":1,"updatedAt":)" + QByteArray::number(time)
                    + ',' + more + '}');
            return refreshed();
        };
        const QByteArray idle = R"("status":"idle","name":"n")";
        QCOMPARE(at(1, idle), u"idle"_s); // how it was found
        QCOMPARE(at(1, idle), u"idle"_s);
        QCOMPARE(at(2, R"("status":"idle","name":"renamed")"), u"idle"_s);
        QCOMPARE(at(3, R"("status":"shell","name":"renamed")"), u"idle"_s);
        QCOMPARE(at(4, R"("status":"idle","name":"renamed")"), u"idle"_s);
        QCOMPARE(at(5, R"("status":"idle","name":"renamed")"), u"completed: a"_s);
    }

    void aRunOfFiftyMillisecondsIsNeverMissed()
    {
        static const LinuxProcessTable processes;
        m_monitor = monitor(
            processes,
            {std::make_unique<LinuxFolderWatch>(), std::make_unique<LinuxFolderWatch>(),
             std::make_unique<LinuxProcessWatch>()});
        QSignalSpy ended(m_monitor.get(), &SessionMonitor::runEnded);
        const auto become = [this](const QString &status, int time) {
            put(1, recordJson(::getpid(), u"a"_s, status, time));
        };
        become(u"idle"_s, 0);
        QTRY_COMPARE(ids(), QStringList{u"a"_s});
        for (int run = 1; run <= 30; ++run) {
            become(u"busy"_s, 100 * run);
            std::this_thread::sleep_for(50ms); // so that it is over before anybody looks
            become(u"idle"_s, 100 * run + 50);
            QTRY_COMPARE(ended.count(), run);
        }
    }

    void theFirstLookIsNoNewsNorIsANewName()
    {
        ClaudeSession session;
        session.status = u"waiting"_s;
        RunTracker runs;
        QVERIFY(runs.update({session}, TimePoint(9s)).begunToWait.isEmpty());
        session.status = u"idle"_s;
        session.updatedAt = 1;
        session.statusUpdatedAt = 1;
        QVERIFY(runs.update({session}, TimePoint(9s)).ended.isEmpty());
        session.updatedAt = 2;
        QVERIFY(runs.update({session}, TimePoint(9s)).ended.isEmpty());
        session.statusUpdatedAt = 2;
        QCOMPARE(runs.update({session}, TimePoint(9s)).ended.size(), 1);
    }

    void tellsWhatBeganToWaitAndHowLongARunWas()
    {
        QStringList told;
        connect(m_monitor.get(), &SessionMonitor::beganToWait, this, [&](const ClaudeSession &session) {
            told.append(session.sessionId);
        });
        connect(
            m_monitor.get(), &SessionMonitor::runEnded, this,
            [&](const ClaudeSession &session, std::chrono::milliseconds length) {
                told.append(session.sessionId + u" after %1"_s.arg(length.count()));
            });
        for (const auto &[status, time] :
             {std::pair(u"busy"_s, 3000),
              {u"waiting"_s, 9000},
              {u"busy"_s, 10000},
              {u"waiting"_s, 11000},
              {u"idle"_s, 33000}}) {
            put(7, recordJson(7, u"a"_s, status, time));
            QCOMPARE(refreshed(), refreshed()); // a second look tells nothing again
            const RunTimes times = m_monitor->times(m_monitor->sessions().first());
            QCOMPARE(times.waitingSince.has_value(), status == u"waiting");
            if (times.waitingSince)
                QCOMPARE(*times.waitingSince, timePointOf(time));
        }
        QCOMPARE(told, QStringList({u"a"_s, u"a"_s, u"a after 30000"_s}));
    }

    void aSessionThatDoesNotTellWorksByItsTranscript()
    {
        auto append = [this, transcript = QByteArray()](const QByteArray &line) mutable {
            m_home->write(u"second/projects/-tmp-my-app/a.jsonl"_s, transcript += line);
            return refreshed();
        };
        const QByteArray prompt = R"({"type":"user","message":{"content":"p"}})"
                                  "\n";
        const QByteArray answer = R"({"type":"assistant","message":{"content":[],"stop_reason":"end_turn"}})"
                                  "\n";
        m_clock.advance(SystemClock().now() + 1min - m_clock.now()); // the files' times are the system's
        m_home->write(u"projects/-tmp-my-app/a.jsonl"_s, answer);    // a copy, which grows no more
        QCOMPARE(append(answer), u"idle"_s);
        m_home->write(u"second/sessions/7.json"_s, recordJson(7, u"a"_s, QString()));
        QCOMPARE(refreshed(), u"idle"_s);
        QCOMPARE(append(prompt), u"working"_s);
        const auto since = m_monitor->sessions().first().updatedAt;
        QTRY_VERIFY(SystemClock().now() > timePointOf(*since)); // a file's time is another
        QCOMPARE(append(prompt), u"working"_s);
        QCOMPARE(m_monitor->sessions().first().updatedAt, since);
        QCOMPARE(append(answer), u"completed: a"_s);
        m_clock.advance(5min);
        QCOMPARE(append(prompt), u"working"_s);
        m_clock.advance(5min);
        QCOMPARE(refreshed(), u"completed: a"_s); // nothing for ten minutes
        m_clock.advance(-10min);
        put(7, recordJson(7, u"a"_s, u"idle"_s));
        m_home->write(u"second/sessions/8.json"_s, recordJson(7, u"a"_s, u"busy"_s)); // the same again
        QCOMPARE(append(prompt), u"completed: a"_s);                                  // it tells by itself
        QCOMPARE(ids(), QStringList{u"a"_s});
    }

    void readsTheFoldersThatThePreferencesName()
    {
        m_home->write(
            u"preferences"_s,
            "[General]\nsessions.folders=~/work: /srv/claude/ :relative::~/.claude:~/work\n");
        const Defaults defaults(m_home->path(u"preferences"_s));
        QCOMPARE(
            claudeFolders(m_home->home(), defaults),
            QStringList({m_home->path(u".claude"_s), m_home->path(u"work"_s), u"/srv/claude"_s}));
    }

    void leavesOutAProcessThatHasTheIdOfOneThatIsGone()
    {
        m_processes.known.insert(7, {.name = u"claude"_s, .birth = 4711});
        for (const auto &[start, isThere] :
             {std::pair("", true),
              {R"(,"procStart":"4711")", true},
              {R"(,"procStart":"4712")", false},
              {R"(,"procStart":"no number")", true}}) {
            put(7, QByteArray(R"({"pid":7,"sessionId":"a","cwd":"/","startedAt":1)") + start + '}');
            (void)refreshed();
            QVERIFY2(m_monitor->sessions().isEmpty() != isThere, start);
        }
    }

    void aNewCompletionReplacesOneFromBeforeTheClockWasSetBack()
    {
        for (const auto back : {0h, 1h}) {
            m_clock.advance(-back);
            QCOMPARE(after(7, u"a"_s, u"busy"_s), back > 0h ? u"working: a"_s : u"working"_s);
            QCOMPARE(after(7, u"a"_s, u"idle"_s), u"completed: a"_s);
        }
        m_clock.advance(2min);
        QCOMPARE(refreshed(), u"idle"_s);
    }

    void completesOnlyWhatWasSeenBusy()
    {
        QCOMPARE(after(7, u"idle from the start"_s, u"idle"_s), u"idle"_s);
        QCOMPARE(after(8, u"dies"_s, u"busy"_s), u"working"_s);
        QCOMPARE(after(9, u"is cleared"_s, u"busy"_s), u"working"_s);
        m_processes.alive.remove(8);
        QCOMPARE(after(9, u"new conversation"_s, u"idle"_s), u"idle"_s);
        m_processes.alive.insert(8);
        QCOMPARE(after(8, u"dies"_s, u"idle"_s), u"idle"_s);
        QCOMPARE(m_monitor->sessions().size(), 3);
    }

    void tellsTwoTerminalsOfOneConversationApart()
    {
        const QSignalSpy changed(m_monitor.get(), &SessionMonitor::sessionsChanged);
        for (int poll = 0; poll < 3; ++poll) {
            QCOMPARE(after(7, u"a"_s, u"busy"_s), u"working"_s);
            QCOMPARE(after(8, u"a"_s, u"idle"_s), u"working"_s);
        }
        QCOMPARE(changed.count(), 2);
        QCOMPARE(ids(), QStringList({u"a"_s, u"a"_s}));
        QCOMPARE(after(7, u"a"_s, u"idle"_s), u"completed: a"_s);
        QCOMPARE(m_monitor->runState(m_monitor->sessions().last()), RunState::Idle);
        m_processes.known.insert(8, {.name = u"claude"_s, .terminal = u"pts/3"_s});
        QCOMPARE(after(9, u"b"_s, u"idle"_s), u"completed: a"_s);
        QStringList terminals;
        for (const ClaudeSession &session : m_monitor->sessions())
            terminals.append(session.sessionId + u' ' + session.terminal.value_or(u"alone"_s));
        terminals.sort();
        QCOMPARE(terminals, QStringList({u"a process 7"_s, u"a pts/3"_s, u"b alone"_s}));
    }

    void leavesOutWhatIsNoRecord()
    {
        const QString folder = m_home->path(u"sessions/"_s);
        QVERIFY(QDir().mkpath(folder + u"folder.json"));
        QCOMPARE(::mkfifo(qPrintable(folder + u"fifo.json"), 0600), 0);
        QVERIFY(QFile::link(folder + u"circle.json", folder + u"circle.json"));
        QVERIFY(QFile::link(folder + u"fifo.json", folder + u"to-fifo.json"));
        put(1, recordJson(::getpid(), u"huge"_s, u"idle"_s));
        QVERIFY(QFile::resize(fileOf(1), 100'000'000));
        put(2, recordJson(::getpid(), u"padded"_s, u"idle"_s) + QByteArray(1024 * 1024, ' '));
        put(3, recordJson(0, u"group"_s, u"busy"_s));
        put(4, recordJson(::getpid(), u"self"_s, u"busy"_s));
        m_home->write(u"elsewhere"_s, recordJson(::getpid(), u"linked"_s, u"busy"_s, 3000));
        QVERIFY(QFile::link(m_home->path(u"elsewhere"_s), folder + u"link.json"));
        static const LinuxProcessTable processes;
        m_monitor = monitor(processes);
        m_monitor->waitForDone();
        QCOMPARE(ids(), QStringList({u"linked"_s, u"self"_s}));
    }

    void leavesOutItsOwnConversationByWhateverPath()
    {
        QVERIFY(QDir().mkpath(m_home->path(u".nubble/ask"_s)));
        QVERIFY(QDir().mkpath(m_home->path(u"other/ask"_s)));
        QVERIFY(QFile::link(m_home->path(u".nubble"_s), m_home->path(u"link"_s)));
        const auto record = [this](qint32 pid, const QString &folder) {
            put(pid,
                recordJson(pid, folder, u"busy"_s).replace("/tmp/my.app", m_home->path(folder).toUtf8()));
        };
        record(7, u".nubble/ask"_s);
        record(8, u"link/ask"_s);
        QCOMPARE(refreshed(), u"idle"_s);
        record(9, u"other/ask"_s);
        QCOMPARE(refreshed(), u"working"_s);
        QCOMPARE(ids(), QStringList{u"other/ask"_s});
    }

    void doesNotFlickerWhileARecordIsRewritten()
    {
        qsizetype seen = 0;
        for (int round = 0; round < 20; ++round) {
            const QByteArray text = recordJson(7, u"a"_s, u"busy"_s);
            put(7, text + "y\"}"); // a writer cuts the end of the old text last
            std::thread writer([&] {
                std::this_thread::sleep_for(300us);
                QFile::resize(fileOf(7), text.size());
            });
            (void)refreshed();
            seen += ids().size();
            writer.join();
            QCOMPARE(refreshed(), u"working"_s);
        }
        QVERIFY2(seen > 18, "only the first is not yet known");
    }

    void skipsABrokenRecordWithoutWaitingForItAgain()
    {
        put(7, "{\"pid\":7,");
        put(8, recordJson(8, u"a"_s, u"idle"_s));
        const auto timesAsleep = [] {
            rusage used{};
            ::getrusage(RUSAGE_THREAD, &used);
            return used.ru_nvcsw;
        };
        const long before = timesAsleep();
        SessionFiles files(m_home->path(u"."_s));
        for (int poll = 0; poll < 1000; ++poll)
            QCOMPARE(files.read().sessions->size(), 1);
        QVERIFY(timesAsleep() - before < 500); // waiting would make it a thousand at least
        QCOMPARE(refreshed(), u"idle"_s);
        put(8, "{\"pid\":8,"); // its writer may be slow
        const auto broken = std::chrono::steady_clock::now();
        QVERIFY(files.read().isBehind);
        QTRY_COMPARE(files.read().sessions->size(), 0);
        QVERIFY(std::chrono::steady_clock::now() - broken >= 1s);
        put(8, recordJson(8, u"a"_s, u"idle"_s));
        QCOMPARE(files.read().sessions->size(), 1);
        put(8, "{\"pid\":8,"); // and another time
        QCOMPARE(files.read().sessions->size(), 1);
        put(8, recordJson(8, u"a"_s, u"idle"_s));
        put(7, recordJson(7, u"b"_s, u"idle"_s, 3000));
        QCOMPARE(refreshed(), u"idle"_s);
        QCOMPARE(ids(), QStringList({u"b"_s, u"a"_s}));
    }

    void tellsWhyItLeavesSomethingOutOnceAndOnlyWhenAsked()
    {
        put(7, "{\"pid\":7,");
        put(8, recordJson(8, u"ended"_s, u"idle"_s));
        put(9, recordJson(9, u"new"_s, u"idle"_s));
        m_processes.alive.remove(8);
        static QString told;
        const auto before = qInstallMessageHandler([](auto, const auto &, const QString &text) {
            told += text + u'\n'; // also by the worker, while it is waited for
        });
        for (const QString &rules : {u""_s, u"nubble.sessions=true"_s}) {
            QVERIFY(told.isEmpty());
            QLoggingCategory::setFilterRules(rules);
            m_monitor = monitor(m_processes);
            m_monitor->waitForDone();
            (void)refreshed();
        }
        QLoggingCategory::setFilterRules({});
        qInstallMessageHandler(before);
        QCOMPARE(
            told,
            u"7.json is no record\nsession \"ended\" has no process 8\n"
            "session \"new\" has no transcript yet\n"_s);
    }

    void readsWhenItIsToldAndPollsEachSecondOnlyWhereItIsNotToldAll()
    {
        QCOMPARE(pollInterval(), 1s); // without watches
        static const LinuxProcessTable processes;
        m_monitor = monitor(
            processes,
            {std::make_unique<LinuxFolderWatch>(), std::make_unique<LinuxFolderWatch>(),
             std::make_unique<LinuxProcessWatch>()});
        QTRY_COMPARE(pollInterval(), 10s);
        for (int round = 0; round < 2; ++round) { // the folders are yet to be made
            const pid_t pid = ::fork();
            if (pid == 0) {
                ::prctl(PR_SET_PDEATHSIG, SIGKILL); // nor does it outlive a test that fails
                ::pause();
            }
            put(1, recordJson(pid, u"a"_s, u"busy"_s));
            QTRY_COMPARE(m_monitor->activity().overall, RunState::Working);
            put(1, recordJson(pid, u"a"_s, u"idle"_s));
            QTRY_COMPARE(m_monitor->activity().overall, RunState::Completed);
            m_clock.advance(119'950ms);
            QCOMPARE(refreshed(), u"completed: a"_s);
            m_clock.advance(1h);
            QTRY_COMPARE(m_monitor->activity().overall, RunState::Idle); // without another reading
            QByteArray transcript;
            for (const auto *prompt : {"one", "two"}) {
                transcript += QByteArray(R"({"type":"last-prompt","lastPrompt":")") + prompt + "\"}\n";
                m_home->write(u"projects/-tmp-my-app/a.jsonl"_s, transcript);
                QTRY_COMPARE(m_monitor->details().byId().value(u"a"_s).lastPrompt, QString::fromUtf8(prompt));
            }
            ::kill(pid, SIGKILL);
            QTRY_VERIFY(ids().isEmpty()); // before anybody has taken note of it
            QCOMPARE(::waitpid(pid, nullptr, 0), pid);
            QCOMPARE(pollInterval(), 10s);
            QVERIFY(QDir(m_home->path(u"sessions"_s)).removeRecursively());
            QVERIFY(QDir(m_home->path(u"projects"_s)).removeRecursively());
        }
        QVERIFY(QFile::link(m_home->path(u"sessions"_s), m_home->path(u"sessions"_s))); // in circles
        QTRY_COMPARE(pollInterval(), 1s);
    }

    void readsLargeRecordsInTurns()
    {
        m_monitor->waitForDone();
        QList<qsizetype> shown;
        for (int pass = 0; pass < 3; ++pass) { // though all of them are rewritten between any two
            for (int number = 1; number < 10; ++number) {
                m_processes.alive.insert(number);
                const QByteArray padding(1'000'000 + pass, ' ');
                put(number, recordJson(number, QString::number(number), u"busy"_s) + padding);
            }
            QCOMPARE(refreshed(), u"working"_s);
            shown.append(ids().size());
        }
        QCOMPARE(shown, QList<qsizetype>({4, 8, 9}));
    }

private:
    // A session record as its process writes it; a status that is null is left out.
    static QByteArray recordJson(
        qint32 pid, const QString &id, const QString &status, double updatedAt = 2000)
    {
        const QString word = status.isNull() ? QString() : QStringLiteral(R"(,"status":"%1")").arg(status);
        return QStringLiteral(
                   R"({"pid":%1,"sessionId":"%2","cwd":"/tmp/my.app","startedAt":1000,"updatedAt":%3%4})")
            .arg(QString::number(pid), id, QString::number(updatedAt), word)
            .toUtf8();
    }
    std::unique_ptr<SessionMonitor> monitor(const ProcessTable &processes, SessionWatches watches = {}) const
    {
        return std::make_unique<SessionMonitor>(
            QStringList{m_home->path(u"."_s), m_home->path(u"second"_s)}, m_home->path(u".nubble/ask"_s),
            processes, m_clock, std::move(watches));
    }
    std::chrono::milliseconds pollInterval() const
    {
        return m_monitor->findChild<QTimer *>()->intervalAsDuration();
    }
    QString fileOf(int number) const { return m_home->path(u"sessions/%1.json"_s.arg(number)); }
    void put(int number, const QByteArray &bytes) const
    {
        m_home->write(u"sessions/%1.json"_s.arg(number), bytes);
    }

    // What is shown then: the work of all, whether one waits, and whose work has been completed.
    QString refreshed()
    {
        m_monitor->refresh();
        m_monitor->waitForDone();
        const Activity activity = m_monitor->activity();
        QStringList completed;
        for (const SessionRun &each : m_monitor->recentlyCompleted())
            completed.append(each.first);
        return stateName(activity.overall)
            + (activity.waiting && activity.overall != RunState::Waiting ? u" and waiting"_s : QString())
            + (completed.isEmpty() ? QString() : u": "_s + completed.join(u' '));
    }
    QString after(qint32 pid, const QString &id, const QString &status)
    {
        put(pid, recordJson(pid, id, status));
        return refreshed();
    }
    QStringList ids() const
    {
        QStringList ids;
        for (const ClaudeSession &session : m_monitor->sessions())
            ids.append(session.sessionId);
        return ids;
    }

    std::unique_ptr<TemporaryHome> m_home;
    FakeProcessTable m_processes;
    ManualClock m_clock;
    std::unique_ptr<SessionMonitor> m_monitor;
};

QTEST_GUILESS_MAIN(SessionsTest)
#include "tst_sessions.moc"
