#include <QLoggingCategory>
#include <QMutex>
#include <QSignalSpy>
#include <QTest>

#include <atomic>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "Platform/Linux/LinuxProcessTable.h"
#include "Sessions/SessionMonitor.h"
#include "sessions/SessionFixtures.h"
#include "support/FakeProcessTable.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

class SessionMonitorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<TemporaryHome>();
        m_processes.alive = {7, 8, 9};
        QVERIFY(QDir().mkpath(m_home->path(u"sessions"_s)));
        m_monitor = std::make_unique<SessionMonitor>(
            m_home->path(u"sessions"_s), m_home->path(u"projects"_s), m_processes, m_clock);
    }

    void cleanup() { m_monitor.reset(); }

    void seesARewriteOfTheSameSizeWithinOneTick()
    {
        const QString path = m_home->write(u"sessions/7.json"_s, recordJson(7, u"a"_s, u"busy"_s));
        m_monitor->refresh();
        struct stat before { };
        QCOMPARE(::stat(qPrintable(path), &before), 0);
        put(u"7.json"_s, recordJson(7, u"a"_s, u"idle"_s));
        const timespec times[]{before.st_atim, before.st_mtim};
        QCOMPARE(::utimensat(AT_FDCWD, qPrintable(path), times, 0), 0);
        m_monitor->refresh();
        QCOMPARE(m_monitor->activity().overall, RunState::Completed);
    }

    void emptiesWithTheFolderAndFillsAgain()
    {
        refreshWith(7, u"a"_s, u"busy"_s);
        QVERIFY(QDir(m_home->path(u"sessions"_s)).removeRecursively());
        m_monitor->refresh();
        QCOMPARE(ids(), QStringList());
        put(u"7.json"_s, recordJson(7, u"a"_s, u"busy"_s));
        QTRY_COMPARE(ids(), QStringList{u"a"_s}); // by itself
    }

    void showsACompletionForTwoMinutes()
    {
        QSignalSpy changed(m_monitor.get(), &SessionMonitor::recentlyCompletedChanged);
        refreshWith(7, u"a"_s, u"busy"_s);
        QCOMPARE(m_monitor->activity().overall, RunState::Working);
        refreshWith(7, u"a"_s, QString());
        QCOMPARE(m_monitor->activity().overall, RunState::Completed);
        m_clock.advance(119999ms);
        refreshWith(7, u"a"_s, u"busy"_s);
        QCOMPARE(m_monitor->recentlyCompleted(), QSet{u"a"_s});
        QCOMPARE(m_monitor->runState(m_monitor->sessions().first()), RunState::Working);
        m_clock.advance(1ms);
        m_monitor->refresh();
        QCOMPARE(m_monitor->recentlyCompleted(), QSet<QString>());
        QCOMPARE(changed.count(), 2);
    }

    void waitsAsLongAsASessionDoesWhateverTheOthersDo()
    {
        refreshWith(7, u"a"_s, u"busy"_s);
        refreshWith(7, u"a"_s, u"waiting"_s);
        const ClaudeSession waiting = m_monitor->sessions().first();
        QCOMPARE(m_monitor->runState(waiting), RunState::Waiting);
        QCOMPARE(m_monitor->workState(waiting), RunState::Completed);
        QCOMPARE(m_monitor->activity(), (Activity{RunState::Completed, true}));
        refreshWith(8, u"b"_s, u"busy"_s);
        QCOMPARE(m_monitor->activity(), (Activity{RunState::Working, true}));
        refreshWith(7, u"a"_s, u"Waiting"_s); // no word that is known
        QCOMPARE(m_monitor->activity(), (Activity{RunState::Working, false}));
    }

    void aNewCompletionReplacesOneFromBeforeTheClockWasSetBack()
    {
        refreshWith(7, u"a"_s, u"busy"_s);
        refreshWith(7, u"a"_s, u"idle"_s);
        m_clock.advance(-1h);
        m_monitor->refresh();
        QCOMPARE(m_monitor->activity().overall, RunState::Completed);
        refreshWith(7, u"a"_s, u"busy"_s);
        refreshWith(7, u"a"_s, u"idle"_s);
        m_clock.advance(2min);
        m_monitor->refresh();
        QCOMPARE(m_monitor->activity().overall, RunState::Idle);
    }

    void completesOnlyWhatWasSeenBusy()
    {
        refreshWith(7, u"idle from the start"_s, u"idle"_s);
        refreshWith(8, u"dies"_s, u"busy"_s);
        refreshWith(9, u"is cleared"_s, u"busy"_s);
        m_processes.alive.remove(8);
        refreshWith(9, u"new conversation"_s, u"idle"_s);
        m_processes.alive.insert(8);
        refreshWith(8, u"dies"_s, u"idle"_s);
        QCOMPARE(m_monitor->sessions().size(), 3);
        QCOMPARE(m_monitor->recentlyCompleted(), QSet<QString>());
    }

    void tellsTwoTerminalsOfOneConversationApart()
    {
        const QSignalSpy changed(m_monitor.get(), &SessionMonitor::sessionsChanged);
        for (int poll = 0; poll < 3; ++poll) {
            refreshWith(7, u"a"_s, u"busy"_s);
            refreshWith(8, u"a"_s, u"idle"_s);
        }
        QCOMPARE(changed.count(), 2);
        QCOMPARE(ids(), QStringList({u"a"_s, u"a"_s}));
        QCOMPARE(m_monitor->recentlyCompleted(), QSet<QString>());
        refreshWith(7, u"a"_s, u"idle"_s);
        QCOMPARE(m_monitor->recentlyCompleted(), QSet{u"a"_s});
    }

    void leavesOutWhatIsNoRecord()
    {
        const QString folder = m_home->path(u"sessions/"_s);
        QCOMPARE(::mkfifo(qPrintable(folder + u"fifo.json"), 0600), 0);
        QVERIFY(QDir().mkpath(folder + u"folder.json"));
        QVERIFY(QFile::link(folder + u"nowhere", folder + u"dangling.json"));
        QVERIFY(QFile::link(folder + u"circle.json", folder + u"circle.json"));
        QVERIFY(QFile::link(folder + u"fifo.json", folder + u"to-fifo.json"));
        put(u"huge.json"_s, recordJson(7, u"huge"_s, u"busy"_s));
        QVERIFY(QFile::resize(folder + u"huge.json", 100'000'000));
        put(u"padded.json"_s, recordJson(7, u"padded"_s, u"idle"_s) + QByteArray(1024 * 1024, ' '));
        put(u"group.json"_s, recordJson(0, u"group"_s, u"busy"_s));
        put(u"self.json"_s, recordJson(::getpid(), u"self"_s, u"busy"_s));
        m_home->write(u"elsewhere"_s, recordJson(::getpid(), u"linked"_s, u"busy"_s, 3000));
        QVERIFY(QFile::link(m_home->path(u"elsewhere"_s), folder + u"link.json"));
        const LinuxProcessTable processes;
        m_monitor = std::make_unique<SessionMonitor>(
            m_home->path(u"sessions"_s), m_home->path(u"projects"_s), processes, m_clock);
        QCOMPARE(ids(), QStringList({u"linked"_s, u"self"_s}));
        m_monitor.reset();
    }

    void doesNotFlickerWhileRecordsAreRewritten()
    {
        refreshWith(7, u"a"_s, u"busy"_s);
        const QByteArray path = QFile::encodeName(m_home->path(u"sessions/7.json"_s));
        std::atomic_bool done = false;
        std::atomic_int rewrites = 0;
        // A writer that the system stops between its two steps for longer than a poll may wait is no fault.
        QElapsedTimer time;
        time.start();
        constexpr qint64 patience = 1'800'000; // nanoseconds
        std::atomic<qint64> begun = 0;         // of the rewrite under way
        std::atomic<qint64> stoppedUntil = -1;
        // As the real writer does it: without emptying the file first, and cutting it last.
        std::thread writer([&] {
            for (; !done; ++rewrites) {
                const QByteArray text = recordJson(7, u"a"_s, u"busy"_s + QString(rewrites % 5, u'!'));
                const int file = ::open(path, O_WRONLY);
                const auto size = static_cast<size_t>(text.size());
                begun = time.nsecsElapsed();
                if (::pwrite(file, text, size, 0) != text.size() || ::ftruncate(file, text.size()) != 0)
                    qFatal("cannot rewrite the record");
                if (const qint64 now = time.nsecsElapsed(); now - begun.exchange(now) > patience)
                    stoppedUntil = now;
                ::close(file);
                std::this_thread::sleep_for(std::chrono::microseconds(20));
            }
        });
        int missed = 0;
        for (int poll = 0; poll < 20'000 || rewrites < 2'000; ++poll) {
            const qint64 start = time.nsecsElapsed();
            m_monitor->refresh();
            const bool excused = stoppedUntil >= start || time.nsecsElapsed() - begun > patience;
            missed += m_monitor->sessions().isEmpty() && !excused ? 1 : 0;
        }
        done = true;
        writer.join();
        QCOMPARE(missed, 0);
    }

    void skipsABrokenRecordWithoutWaitingForItAgain()
    {
        put(u"7.json"_s, "{\"pid\":7,");
        refreshWith(8, u"a"_s, u"idle"_s);
        const auto timesAsleep = [] {
            rusage used{};
            ::getrusage(RUSAGE_THREAD, &used);
            return used.ru_nvcsw;
        };
        const long before = timesAsleep();
        for (int poll = 0; poll < 1000; ++poll)
            m_monitor->refresh();
        QVERIFY(timesAsleep() - before < 500); // waiting would make it a thousand at least
        QCOMPARE(ids(), QStringList{u"a"_s});
        put(u"7.json"_s, recordJson(7, u"b"_s, u"idle"_s, 3000));
        m_monitor->refresh();
        QCOMPARE(ids(), QStringList({u"b"_s, u"a"_s}));
    }

    void tellsWhyItLeavesSomethingOutOnceAndOnlyWhenAsked()
    {
        put(u"7.json"_s, "{\"pid\":7,");
        put(u"8.json"_s, recordJson(8, u"ended"_s, u"idle"_s));
        put(u"9.json"_s, recordJson(9, u"new"_s, u"idle"_s));
        m_processes.alive.remove(8);
        static QMutex mutex; // transcripts are read on another thread
        static QStringList told;
        const auto before =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext &context, const QString &text) {
                const QMutexLocker lock(&mutex);
                told.append(QString::fromUtf8(context.category) + u": " + text);
            });
        const auto toldWith = [this](const QString &rules) {
            told.clear();
            QLoggingCategory::setFilterRules(rules);
            SessionMonitor monitor(
                m_home->path(u"sessions"_s), m_home->path(u"projects"_s), m_processes, m_clock);
            monitor.waitForDetails();
            monitor.refresh();
            monitor.waitForDetails();
            told.sort();
            return told;
        };
        const QStringList silent = toldWith({});
        const QStringList all = toldWith(u"nubble.*=true"_s);
        QLoggingCategory::setFilterRules({});
        qInstallMessageHandler(before);
        QCOMPARE(silent, QStringList());
        QCOMPARE(
            all,
            QStringList(
                {u"nubble.sessions: 7.json is no record"_s,
                 u"nubble.sessions: session \"ended\" has no process 8"_s,
                 u"nubble.sessions: session \"new\" has no transcript yet"_s}));
    }

private:
    void put(const QString &name, const QByteArray &bytes) const
    {
        m_home->write(u"sessions/"_s + name, bytes);
    }
    void refreshWith(qint32 pid, const QString &id, const QString &status)
    {
        put(QString::number(pid) + u".json", recordJson(pid, id, status));
        m_monitor->refresh();
    }
    [[nodiscard]] QStringList ids() const
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

QTEST_GUILESS_MAIN(SessionMonitorTest)
#include "tst_session_monitor.moc"
