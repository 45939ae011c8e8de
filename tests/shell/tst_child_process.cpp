#include <QElapsedTimer>
#include <QPointer>
#include <QTest>

#include <fcntl.h>
#include <thread>
#include <unistd.h>

#include "Shell/ChildProcess.h"
#include "Shell/Relaunch.h"
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

// A process that has ended has no command line, even while nobody has taken note of its end.
bool isGone(const QByteArray &pid)
{
    QFile commandLine(u"/proc/%1/cmdline"_s.arg(pid.trimmed().toInt()));
    return !commandLine.open(QIODevice::ReadOnly) || commandLine.readAll().isEmpty();
}

// Collects what a child gives.
struct Watch {
    explicit Watch(ChildProcess &child)
    {
        QObject::connect(&child, &ChildProcess::output, &context, [this](const QByteArray &chunk) {
            output += chunk;
            largest = std::max(largest, chunk.size());
        });
        QObject::connect(
            &child, &ChildProcess::ended, &context, [this](const CommandEnd &last) { end = printed(last); });
        child.start();
    }

    QByteArray output;
    QByteArray end;
    qsizetype largest = 0;
    QObject context;
};

} // namespace

class ChildProcessTest : public QObject {
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
            QElapsedTimer timer;
            timer.start();
            QCOMPARE(printed(runCommand(command, QByteArray(3'000'000, 'x'), limits)), end);
            QVERIFY2(timer.elapsed() < 20'000, script);
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
            ChildProcess child(each);
            Watch watch(child);
            QVERIFY(watch.end.isEmpty());
            QTRY_COMPARE(watch.end, "not started 0: |");
        }
    }

    void aRunCanBeStoppedFromAnotherThread()
    {
        std::jthread worker([](const std::stop_token &stop) {
            QCOMPARE(printed(runCommand(sh("exec sleep 60"), {}, {}, stop)), "signalled 9 as asked: |");
        });
    }

    void aChildInheritsOnlyWhatItIsGiven()
    {
        const int open = ::open("/dev/null", O_RDONLY);
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
        const CommandEnd end = runCommand(command, {}, {});
        ::pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
        ::signal(SIGINT, SIG_DFL);
        ::close(open);
        QCOMPARE(
            end.output,
            "0\n1\n2\n3\nSigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n/usr\nb c\n0 19\n");
    }

    void writingAndReadingGoOnSideBySide()
    {
        ChildProcess child({u"/bin/cat"_s});
        Watch watch(child);
        const QByteArray bytes(3'000'000, '\xe4');
        child.write(bytes);
        child.closeInput();
        QVERIFY(watch.output.isEmpty());
        QTRY_COMPARE(watch.end, "exited 0: |");
        QCOMPARE(watch.output, bytes);
        QVERIFY(watch.largest <= 65536);
    }

    void aFloodIsCutAtTheLimit()
    {
        ChildProcess child(
            sh("yes >&2 & exec yes"), {.output = 5, .errors = 3}, ChildProcess::Delivery::Whole);
        Watch watch(child);
        QTRY_VERIFY(!watch.end.isEmpty());
        QVERIFY2(watch.end.startsWith("signalled 15 for its output: y\ny\ny|"), watch.end);
    }

    void endingIsAskedForAndThenEnforced()
    {
        ::signal(SIGTERM, [](int) { ::_exit(77); }); // ours must not run in a child that is not itself yet
        for (int i = 0; i < 20; ++i) {
            ChildProcess child(sh("exec sleep 60"));
            Watch watch(child);
            child.end();
            QTRY_COMPARE(watch.end, "signalled 15 as asked: |");
            QVERIFY(!child.signal(SIGINT));
        }
        ::signal(SIGTERM, SIG_DFL);
        ChildProcess stubborn(sh("trap '' TERM; echo; sleep 60 & wait"), {.time = 1ms, .grace = 500ms});
        Watch watch(stubborn);
        QTRY_VERIFY(watch.end.startsWith("signalled ") && watch.end.contains(" for its time"));
    }

    void aSignalReachesTheChildAlone()
    {
        ChildProcess child(
            sh("trap 'exit 5' INT; sleep 60 & echo $!; wait"), {}, ChildProcess::Delivery::Chunks,
            ChildProcess::Lifetime::ItsOwn);
        Watch watch(child);
        QTRY_VERIFY(watch.output.endsWith('\n'));
        QVERIFY(child.signal(SIGINT));
        QTRY_COMPARE(watch.end, "exited 5: |"); // though another process holds its output open
        QVERIFY(!isGone(watch.output));
        ::kill(watch.output.trimmed().toInt(), SIGKILL);
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
        auto *child = new ChildProcess(sh("exit 0"));
        QPointer<ChildProcess> watched(child);
        connect(child, &ChildProcess::ended, this, [&] { delete child; });
        child->start();
        QTRY_VERIFY(!watched);
    }

    void itEndsWithTheProgram()
    {
        for (const QString &how : {u"crash"_s, u"quit"_s}) {
            const CommandEnd end = runCommand({QCoreApplication::applicationFilePath(), {how}}, {}, {});
            QVERIFY(!end.output.isEmpty());
            QTRY_VERIFY(isGone(end.output));
        }
    }

    void theProgramStartsAgainWithItsArgumentsUnharmed()
    {
        const QString program = m_home.writeScript(
            u"a folder/pro\"gram's $HOME.sh"_s,
            "#!/bin/sh\nout=$1; shift\nprintf '%s|' \"$(pwd)\" \"$(readlink /proc/$$/fd/7)\" $# \"$@\" > "
            "\"$out.part\"\nmv \"$out.part\" \"$out\"\n");
        const QStringList arguments{
            u"--home"_s, u"/a b/c"_s, u"it's \"quoted\""_s, u"$(touch x) `y` $HOME *"_s, {}, u"日本"_s};
        const QString told = u"|6|"_s + arguments.join(u'|') + u'|';
        Relaunch{program, QStringList{m_home.path(u"out put"_s)} + arguments}.now();
        QTRY_COMPARE(QString::fromUtf8(m_home.read(u"out put"_s)), QDir::currentPath() + u'|' + told);

        QCOMPARE(::dup2(1, 7), 7); // which a detached process does not share with its starter
        QVERIFY((Relaunch{program, QStringList{m_home.path(u"at once"_s)} + arguments}.startDetached()));
        QTRY_COMPARE(QString::fromUtf8(m_home.read(u"at once"_s)), u"/|"_s + told);
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

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QByteArray how = argc == 2 ? argv[1] : "";
    if (how == "crash" || how == "quit")
        return runAndEnd(application, how == "crash");
    ChildProcessTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_child_process.moc"
