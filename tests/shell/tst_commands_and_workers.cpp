#include <QPointer>
#include <QSemaphore>
#include <QTest>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "Shell/ChildProcess.h"
#include "Shell/Relaunch.h"
#include "Shell/SerialWorker.h"
#include "support/TemporaryHome.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

Command sh(const QByteArray &script)
{
    return {u"/bin/sh"_s, {u"-c"_s, QString::fromUtf8(script)}};
}

QByteArray printed(const CommandEnd &end)
{
    static const std::array<QByteArray, 3> kinds{"not started ", "exited ", "signalled "};
    static const std::array<QByteArray, 4> causes{"", " for its output", " for its time", " as asked"};
    return kinds.at(static_cast<size_t>(end.kind)) + QByteArray::number(end.code)
        + causes.at(static_cast<size_t>(end.cause)) + ": " + end.output + '|' + end.errors;
}

// Whether it has ended, even while nobody has taken note of that. Its command line would not tell: that can
// be empty for a moment before.
bool isGone(const QByteArray &pid)
{
    QFile file(u"/proc/%1/stat"_s.arg(pid.trimmed().toInt()));
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const QByteArray stat = file.readAll();
    return stat.isEmpty() || QByteArray("ZX").contains(stat.mid(stat.lastIndexOf(')') + 2, 1));
}

// Collects what it gives.
struct Child : ChildProcess {
    explicit Child(
        const Command &command, CommandLimits limits = {}, Delivery delivery = Delivery::Chunks,
        Lifetime lifetime = Lifetime::Ours)
        : ChildProcess(command, limits, delivery, lifetime)
    {
        connect(this, &ChildProcess::output, this, [this](const QByteArray &chunk) { given += chunk; });
        connect(this, &ChildProcess::ended, this, [this](const CommandEnd &last) { said = printed(last); });
        start();
    }

    QByteArray given;
    QByteArray said; // at its end
};

} // namespace

class CommandsAndWorkersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aRunGivesTheOutputAndHowItEnded()
    {
        for (const auto &[script, end] :
             {std::pair<QByteArray, QByteArray>("wc -c; echo bad >&2; exit 3", "exited 3: 3000000\n|d\n"),
              {"cat | tail -c 3", "exited 0: xxx|"}, // more goes in and comes out than a pipe holds
              {"echo unread", "exited 0: unread\n|"},
              {"kill -QUIT $$", "signalled 3: |"},
              {"exec yes", "signalled 9 for its output: " + QByteArray("y\n").repeated(1000) + '|'},
              {"echo half; exec sleep 60", "signalled 9 for its time: half\n|"},
              {"head -c 9999999 /dev/zero >&2; printf 123456 >&2", "exited 0: |56"},
              {"sleep 60 & echo $! > pid; echo all", "exited 0: all\n|"},
              {"yes '' >&2 & echo $! > pid; sleep 0.2; exit 1", "exited 1: |\n\n"}}) {
            Command command = sh(script);
            command.folder = m_home.path(u"."_s);
            const CommandLimits limits{
                .output = 2000, .errors = 2, .time = end.contains("time") ? 300ms : 20'000ms};
            QCOMPARE(printed(runCommand(command, QByteArray(3'000'000, 'x'), limits)), end);
            QTRY_VERIFY2(isGone(m_home.read(u"pid"_s)), script);
        }
    }

    void whatCannotBeRunIsSaid()
    {
        Command lost = sh("echo x");
        lost.folder = m_home.path(u"missing"_s);
        const QString noProgram = m_home.writeScript(u"binary"_s, "no script");
        for (const Command &each : {lost, Command{noProgram}, Command{u"true"_s}, Command{}}) {
            QCOMPARE(printed(runCommand(each, "x", {})), "not started 0: |");
            const Child child(each);
            QVERIFY(child.said.isEmpty());
            QTRY_COMPARE(child.said, "not started 0: |");
        }
    }

    void aChildInheritsOnlyWhatItIsGiven()
    {
        QVERIFY(::open("/dev/null", O_RDONLY) > 2);
        sigset_t blocked;
        ::sigemptyset(&blocked);
        ::sigaddset(&blocked, SIGUSR1);
        ::pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
        ::signal(SIGPIPE, SIG_IGN);
        ::signal(SIGINT, SIG_IGN);
        Command command = sh("ls /proc/self/fd; grep -Eh 'Sig(Blk|Ign)' /proc/self/status; pwd; echo $A;"
                             "set -- $(cat /proc/$$/stat); echo $(($1 - $5)) ${19}");
        command.folder = u"/usr"_s;
        command.niceness = 19;
        command.environment.emplace();
        command.environment->insert(u"A"_s, u"b c"_s);
        QCOMPARE(
            runCommand(command, {}, {}).output,
            "0\n1\n2\n3\nSigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n/usr\nb c\n0 19\n");
        ::pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
        ::signal(SIGINT, SIG_DFL);
    }

    void writingAndReadingGoOnSideBySide()
    {
        Child child({u"/bin/cat"_s});
        const QByteArray bytes(3'000'000, '\xe4');
        child.write(bytes);
        child.closeInput();
        QVERIFY(child.given.isEmpty());
        QTRY_COMPARE(child.said, "exited 0: |");
        QCOMPARE(child.given, bytes);
    }

    void aFloodIsCutAtTheLimit()
    {
        const Child child(sh("yes >&2 & exec yes"), {.output = 5, .errors = 3}, Child::Delivery::Whole);
        QTRY_VERIFY(!child.said.isEmpty());
        QVERIFY2(child.said.startsWith("signalled 15 for its output: y\ny\ny|"), child.said);
    }

    void endingIsAskedForAndThenEnforced()
    {
        ::signal(SIGTERM, [](int) { ::_exit(77); }); // ours must not run in a child that is not itself yet
        for (int i = 0; i < 20; ++i) {
            Child child(sh("exec sleep 60"));
            child.end();
            QTRY_COMPARE(child.said, "signalled 15 as asked: |");
            QVERIFY(!child.signal(SIGINT));
        }
        ::signal(SIGTERM, SIG_DFL);
        Child stubborn(sh("trap '' TERM; echo; sleep 60 & wait"), {.time = 100ms, .grace = 500ms});
        QTest::qWait(200); // by then its time is over
        stubborn.end();
        QTRY_VERIFY(stubborn.said.startsWith("signalled ") && stubborn.said.contains(" for its time"));
    }

    void aSignalReachesTheChildAlone()
    {
        const Child child(
            sh("trap 'exit 5' INT; sleep 60 & echo $!; wait"), {}, Child::Delivery::Chunks,
            Child::Lifetime::ItsOwn);
        QTRY_VERIFY(child.given.endsWith('\n'));
        QVERIFY(child.signal(SIGINT));
        QTRY_COMPARE(child.said, "exited 5: |"); // though another process holds its output open
        QVERIFY(!isGone(child.given));
        ::kill(child.given.trimmed().toInt(), SIGKILL);
    }

    void itEndsWithItsObjectUnlessItsLifeIsItsOwn()
    {
        const QByteArray file = QFile::encodeName(m_home.path(u"all"_s));
        for (const auto lifetime : {ChildProcess::Lifetime::Ours, ChildProcess::Lifetime::ItsOwn}) {
            auto *child = new ChildProcess(
                sh("trap '' TERM; echo $$; cat; sleep 0.3; head -c 999999 /dev/zero; echo > " + file),
                {.grace = 100ms}, ChildProcess::Delivery::Chunks, lifetime);
            QByteArray pid;
            connect(child, &ChildProcess::output, this, [&](const QByteArray &chunk) {
                pid = chunk;
                delete child;
            });
            child->start();
            QTRY_VERIFY(!pid.isEmpty());
            QTRY_VERIFY(isGone(pid));
            QCOMPARE(QFile::exists(m_home.path(u"all"_s)), lifetime == ChildProcess::Lifetime::ItsOwn);
        }
        const QPointer<Child> child(new Child(sh("exit 0")));
        connect(child, &Child::ended, this, [&] { delete child; });
        QTRY_VERIFY(!child);
    }

    void itEndsWithTheProgram()
    {
        for (const QString &how : {u"crash"_s, u"quit"_s}) {
            const CommandEnd end = runCommand({QCoreApplication::applicationFilePath(), {how}}, {}, {});
            QVERIFY(!end.output.isEmpty());
            QTRY_VERIFY(isGone(end.output));
        }
    }

    // Where writing to a pipe without a reader would end it.
    void oneWhoseLifeIsItsOwnGoesOnAndWritesWhenTheProgramIsNoMore()
    {
        const QByteArray file = QFile::encodeName(m_home.path(u"went on"_s));
        const CommandEnd end = runCommand(
            {QCoreApplication::applicationFilePath(), {u"leave"_s, QFile::decodeName(file)}}, {}, {});
        QCOMPARE(end.output, "both\n");
        QTRY_COMPARE(m_home.read(u"went on"_s), "all\n");
    }

    void whoStartsNowIsToldWhyNot()
    {
        ChildProcess missing({.program = m_home.path(u"missing"_s)});
        QVERIFY(!missing.startNow().isDone() && !missing.isRunning());
        ChildProcess relative({.program = u"sh"_s});
        QVERIFY(relative.startNow().why().contains("sh"_L1));
        ChildProcess good(sh("exit 0"));
        QVERIFY(good.startNow().isDone());
    }

    void theProgramStartsAgainWithItsArgumentsUnharmed()
    {
        const QString program = m_home.writeScript(
            u"a folder/pro\"gram's $HOME.sh"_s,
            "#!/bin/sh\nout=$1; shift\nprintf '%s|' \"$(pwd)\" \"$(readlink /proc/$$/fd/7)\" $# \"$@\" > "
            "\"$out\"");
        const QStringList arguments{
            u"--home"_s, u"/a b/c"_s, u"it's \"quoted\""_s, u"$(touch x) `y` $HOME *"_s, {}, u"日本"_s};
        const QString told = u"|6|"_s + arguments.join(u'|') + u'|';
        Relaunch{program, QStringList(m_home.path(u"out put"_s)) + arguments}.now();
        QTRY_COMPARE(m_home.read(u"out put"_s), (QDir::currentPath() + u'|' + told).toUtf8());

        QCOMPARE(::dup2(1, 7), 7); // which a detached process does not share with its starter
        QVERIFY((Relaunch{program, QStringList(m_home.path(u"at once"_s)) + arguments}.startDetached()));
        QTRY_COMPARE(m_home.read(u"at once"_s), (u"/|"_s + told).toUtf8());
    }

    void aWorkerWorksInOrderAndTheLatestTakesThePlaceOfTheOneBefore()
    {
        SerialWorker worker(u"test"_s);
        QSemaphore begun;
        QSemaphore gate;
        QByteArray published;
        const auto publish = [&](char what) {
            QCOMPARE(QThread::currentThread(), thread());
            published += what;
        };
        const auto give = [](char what) { return [what](const std::stop_token &) { return what; }; };
        const auto held = [&](const std::stop_token &) {
            begun.release();
            gate.acquire();
            return 'a';
        };
        worker.addLatest(held, publish);
        begun.acquire();
        QVERIFY(!worker.hasLatestWaiting()); // it has begun
        worker.add(give('b'), publish);
        worker.addLatest(give('x'), publish);
        worker.add(give('d'), publish);
        worker.addLatest(give('c'), publish);
        QVERIFY(worker.hasLatestWaiting());
        gate.release();
        worker.waitForDone();
        QCOMPARE(published, "abcd");
        worker.add(give('e'), publish);
        QTRY_COMPARE(published, "abcde");
    }

    void nothingHappensOnceAWorkerHasGone()
    {
        QByteArray done;
        QSemaphore begun;
        const auto publish = [&](int) { done += " published"; };
        auto worker = std::make_unique<SerialWorker>(u"test"_s);
        worker->add([](const std::stop_token &) { return 0; }, publish);
        worker->add(
            [&](const std::stop_token &stop) {
                begun.release();
                while (!stop.stop_requested())
                    QThread::yieldCurrentThread();
                done += "stopped";
                return 0;
            },
            publish);
        worker->add([&](const std::stop_token &) { return done.append(" begun").isEmpty(); }, publish);
        begun.acquire();
        worker.reset();
        QCoreApplication::processEvents();
        QCOMPARE(done, "stopped");
    }

    void aWorkersThreadStaysAndIsPoliteAsAreTheCommandsThatItRuns()
    {
        const int ours = ::getpriority(PRIO_PROCESS, 0);
        SerialWorker worker(u"test"_s, 15);
        const auto report = [](const std::stop_token &stop) {
            const CommandEnd child = runCommand({u"/bin/cat"_s, {u"/proc/self/stat"_s}}, {}, {}, stop);
            return QList<int>{
                ::gettid(), ::getpriority(PRIO_PROCESS, 0), child.output.split(' ').value(18).toInt()};
        };
        QList<QList<int>> said;
        for (int i = 0; i < 2; ++i) {
            worker.add(report, [&](const QList<int> &each) { said.append(each); });
            worker.waitForDone();
            QThread::msleep(20); // in which a thread that does not stay would end
        }
        QCOMPARE(said.last(), said.first());
        QCOMPARE(said.first().sliced(1), QList<int>(2, qMax(ours, 15)));
        QCOMPARE(::getpriority(PRIO_PROCESS, 0), ours);
    }

private:
    TemporaryHome m_home;
};

// A program that starts a child, says which, and ends at once.
static int runAndEnd(QCoreApplication &application, bool crashes)
{
    ChildProcess child(sh(crashes ? "echo $$; exec sleep 60" : "trap '' TERM; echo $$; sleep 60"));
    QObject::connect(&child, &ChildProcess::output, &application, [crashes](const QByteArray &pid) {
        if (::write(STDOUT_FILENO, pid.constData(), static_cast<size_t>(pid.size())) < 0 || crashes)
            ::_exit(1);
        QCoreApplication::quit();
    });
    child.start();
    return QCoreApplication::exec();
}

// Ends at once when the child, which has no input, has written, and it goes on writing.
static int leaveChild(const QByteArray &file)
{
    Command command = sh(
        "cat; echo both >&2; sleep 0.2; head -c 999999 /dev/zero && echo >&2 && echo all > '" + file + "'");
    command.joinsErrors = true;
    ChildProcess child(command, {}, ChildProcess::Delivery::Chunks, ChildProcess::Lifetime::ItsOwn);
    QObject::connect(&child, &ChildProcess::output, [](const QByteArray &chunk) {
        ::_exit(::write(STDOUT_FILENO, chunk.constData(), static_cast<size_t>(chunk.size())) < 0 ? 1 : 0);
    });
    return child.startNow().isDone() ? QCoreApplication::exec() : 1;
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc == 3 && QByteArray(argv[1]) == "leave")
        return leaveChild(argv[2]);
    const QByteArray how = argc == 2 ? argv[1] : "";
    if (how == "crash" || how == "quit")
        return runAndEnd(application, how == "crash");
    CommandsAndWorkersTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_commands_and_workers.moc"
