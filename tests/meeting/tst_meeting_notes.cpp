#include <QElapsedTimer>
#include <QJsonArray>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Meeting/MeetingNotes.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Shell/Defaults.h"
#include "Shell/Tools.h"
#include "meeting/RecorderStandIn.h"
#include "support/FakeAudioInput.h"
#include "support/ManualClock.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Phase = MeetingState::Phase;

const QString docLink = u"https://docs.google.com/document/d/1a/edit?tab=t.0"_s;

// A home with a recorder, and what drives it.
struct World {
    explicit World(Home folder) : home(std::move(folder)) { defaults.set(u"meetingNotes.link"_s, docLink); }

    std::unique_ptr<MeetingNotes> notes(MeetingNotes::Pace pace = {.poll = 1h})
    {
        pace.patience = patience;
        return std::make_unique<MeetingNotes>(
            home, defaults, clock,
            MeetingNotes::Surroundings{
                .processes = processes,
                .microphone = microphone,
                .clipboardText = [this] { return clipboard; },
                .openLink = [this](const QUrl &url) { opened += url.toString(); },
                .pgrep = home.file(u".quib-live/pgrep"_s)},
            pace);
    }

    Home home;
    Defaults defaults{home.file(u"defaults.conf"_s)};
    LinuxProcessTable processes;
    ManualClock clock;
    FakeAudioInput microphone;
    std::chrono::milliseconds patience = 20s;
    QString clipboard{};
    QStringList opened{};
};

bool isAlive(pid_t pid)
{
    return LinuxProcessTable().find(pid).has_value();
}

} // namespace

class MeetingNotesTest : public QObject {
    Q_OBJECT

private:
    [[nodiscard]] const MeetingState &state() const { return m_notes->state(); }
    void start()
    {
        m_notes->start();
        QCOMPARE(state().phase, Phase::Recording);
        QTRY_VERIFY(m_recorder->pid() > 0);
    }
    // What the status is in the end of a recorder that follows that script.
    QString statusAfter(const QByteArray &script)
    {
        m_recorder->follow(script);
        m_notes->start();
        [this] { QTRY_COMPARE_WITH_TIMEOUT(state().phase, Phase::Idle, 30000); }();
        return state().status;
    }
    // A process of the user's own; without parent its starter goes first.
    pid_t leave(const QByteArray &name, bool isOrphan, bool heedsInterrupt)
    {
        const QString file = m_home->path(u".quib-live/sessions/"_s + QString::fromLatin1(name));
        m_left.push_back(std::make_unique<QProcess>());
        QProcess &shell = *m_left.back();
        const QString ignore = heedsInterrupt ? QString() : u"trap '' INT; "_s;
        const QString ends = isOrphan ? u"\"$0\" 60 >&- & echo $!"_s : u"echo $$; exec \"$0\" 60"_s;
        shell.start(u"/bin/sh"_s, {u"-c"_s, ignore + ends, file});
        [&] { QTRY_VERIFY(shell.canReadLine()); }();
        const pid_t pid = shell.readLine().trimmed().toInt();
        [&] {
            QTRY_COMPARE(
                LinuxProcessTable().find(pid).value_or(ProcessInfo()).name, QString::fromLatin1(name));
        }();
        m_pids.append(pid);
        return pid;
    }

    std::optional<TemporaryHome> m_home;
    std::optional<RecorderStandIn> m_recorder;
    std::optional<World> m_world;
    std::unique_ptr<MeetingNotes> m_notes;
    std::vector<std::unique_ptr<QProcess>> m_left;
    QList<pid_t> m_pids;

private Q_SLOTS:
    void init()
    {
        m_home.emplace();
        m_recorder.emplace(*m_home);
        m_home->write(u".quib-live/sessions/empty"_s, {});
        // Now, for a file that is being written when another thread starts a process cannot be run.
        for (const auto &name : {u"node"_s, u"ffmpeg"_s, u"tail"_s})
            QFile::copy(u"/bin/sleep"_s, m_home->path(u".quib-live/sessions/"_s + name));
        m_world.emplace(m_home->home());
        m_notes = m_world->notes();
    }
    void cleanup()
    {
        if (const pid_t pid = m_recorder->pid())
            ::kill(pid, SIGKILL);
        for (const pid_t pid : std::exchange(m_pids, {}))
            ::kill(pid, SIGKILL);
        m_notes.reset();
        for (const auto &each : m_left)
            each->waitForFinished();
        m_left.clear();
    }

    void aRecordingFromStartToEnd()
    {
        m_recorder->follow(
            "say('10:00:00 AM resuming tab \"Week 12\"'); process.stderr.write('writing as "
            "Me\\nnext 1790000300000\\n'); finish = () => { say('final notes'); process.exit(1); }");
        const QSignalSpy changes(m_notes.get(), &MeetingNotes::changed);
        start();
        QCOMPARE(m_world->microphone.streams, 1);
        QTRY_VERIFY(state().nextUpdate);
        QCOMPARE(state().status, u"Connected as Me."_s);
        QCOMPARE(state().tabTitle, u"Week 12"_s);
        QCOMPARE(state().startedAt, m_world->clock.now());
        QCOMPARE(
            m_recorder->started()["arguments"_L1].toVariant().toStringList(),
            QStringList({m_home->path(u".quib-live/quib-live.mjs"_s), docLink, u"--resume"_s}));
        QCOMPARE(m_recorder->started()["folder"_L1].toString(), m_home->path(u".quib-live"_s));
        QCOMPARE(m_recorder->started()["path"_L1].toString(), Tools::searchPath(m_home->home()));
        QCOMPARE(m_recorder->started()["input"_L1].toString(), u"/dev/null"_s);
        m_notes->start();
        QCOMPARE(state().status, u"Already running — stop it first."_s);

        QVERIFY(m_notes->canUpdateNow());
        m_notes->updateNow();
        QCOMPARE(state().status, u"Transcribing and writing the Doc now…"_s);
        QVERIFY(state().updating && !m_notes->canUpdateNow());
        m_notes->updateNow();
        QTRY_COMPARE(m_recorder->log().last(), u"pass"_s);
        QCOMPARE(m_recorder->kept("signals"), "USR1\n");
        m_world->clipboard = u"other"_s;
        m_notes->pasteLink();
        QCOMPARE(state().status, u"Transcribing and writing the Doc now…"_s);

        m_notes->stop();
        QCOMPARE(state().phase, Phase::Finishing);
        QCOMPARE(m_world->microphone.streams, 0);
        QCOMPARE(state().status, u"Finishing — last transcription and notes pass…"_s);
        QTRY_COMPARE(state().phase, Phase::Idle);
        QVERIFY(!state().startedAt && !state().nextUpdate && !state().updating && state().tabTitle);
        QCOMPARE(state().status, u"final notes"_s);
        QVERIFY(!changes.isEmpty());
        const QString start = u" others=[] link="_s + docLink;
        QCOMPARE(
            m_recorder->log(),
            QStringList(
                {u"start pressed: phase=idle"_s + start, u"---- start 2026-09-21 14:13:20 +0000 "_s + docLink,
                 u"10:00:00 AM resuming tab \"Week 12\""_s, u"writing as Me"_s, u"next 1790000300000"_s,
                 u"start pressed: phase=recording"_s + start, u"start refused: already running []"_s,
                 u"update now pressed: updating=false"_s, u"update now pressed: updating=true"_s, u"pass"_s,
                 u"stop pressed: phase=recording running=true others=[]"_s, u"final notes"_s}));
    }

    void howItEndsIsTold()
    {
        for (const auto &[script, status] :
             {std::pair<QByteArray, QString>("process.exit(1)", u"Couldn't start: Starting…"_s),
              {"say('error: no key'); process.exit(2)", u"Couldn't start: no key"_s},
              {"say('Recorder Already Running for this tab'); process.exit(1)",
               u"Recorder Already Running for this tab"_s},
              {"say('updated: A-b'); process.exit(0)", u"Updated A b"_s},
              {"process.stdout.write('1:00:00 AM\\u00a0\\nlast', () => process.exit(3))",
               u"Couldn't start: exit 3"_s},
              {"say('x'); process.kill(process.pid, 'SIGKILL')", u"Couldn't start: x"_s}})
            QCOMPARE(statusAfter(script), status);
        QCOMPARE(state().lastUpdate, m_world->clock.now());
    }

    void whatIsMissingIsSaid()
    {
        const QString script = m_home->path(u".quib-live/quib-live.mjs"_s);
        m_home->writeScript(u".local/bin/node"_s, "#!/missing\n");
        m_notes->start();
        QVERIFY(state().status.startsWith("Couldn't start node: "_L1));
        QVERIFY(m_recorder->log().last().startsWith("start failed: "_L1));
        QCOMPARE(state().phase, Phase::Idle);
        QCOMPARE(m_world->microphone.streams, 0);
        QVERIFY(QFile::remove(script));
        m_notes->start();
        QCOMPARE(state().status, u"The recorder isn't installed ("_s + script + u").");
        const QString newLink = docLink + u'1';
        for (const auto &[text, status] :
             {std::pair<QString, QString>(
                  u" \n"_s + newLink + u"\r\n", u"Link set. Press Start when the meeting begins."_s),
              {u"https://docs.google.com/document/d/1a"_s,
               u"That link has no tab — open the week's tab and copy the link again."_s},
              {docLink + QString(9000, u'x'), u"Copy the agenda tab's Google Doc link first."_s}}) {
            m_world->clipboard = text;
            m_notes->pasteLink();
            QCOMPARE(state().status, status);
            QCOMPARE(state().link, newLink);
        }
        QCOMPARE(m_world->defaults.string(u"meetingNotes.link"_s), newLink);
        m_notes->openDoc();
        QCOMPARE(m_world->opened, QStringList(newLink));
        m_world->defaults.set(u"meetingNotes.link"_s, u"tab="_s);
        m_notes = m_world->notes();
        m_notes->start();
        QCOMPARE(state().status, u"Paste the agenda tab's link first."_s);
        QCOMPARE(m_recorder->log().last(), u"start refused: no tab link"_s);
    }

    // A switched-off add-on's model may be there; it must not do anything.
    void nothingHappensBeforeItIsWatched()
    {
        m_notes = m_world->notes({.poll = 50ms});
        QVERIFY(m_notes->findChildren<QTimer *>().isEmpty()); // nothing is to come, either
        QVERIFY(m_recorder->scans() == 0 && m_recorder->log().isEmpty());
        QCOMPARE(m_world->microphone.streams, 0);
        const QSignalSpy changes(m_notes.get(), &MeetingNotes::changed);
        m_notes->watch();
        QTRY_VERIFY(m_recorder->scans() >= 3);
        QVERIFY(changes.isEmpty());
    }

    // Its output has no reader then, which would end a program that writes to it.
    void theRecorderFinishesWithoutUs()
    {
        for (const QByteArray say : {"say", "write"})
            for (const auto &[how, size] :
                 {std::pair(u"crash"_s, 1), {u"quit"_s, 1}, {u"crash"_s, 9000}, {u"crash"_s, 20'000}}) {
                const QByteArray lines = "for (let i = 0; i < " + QByteArray::number(size) + "; ++i) " + say
                    + "('x'.repeat(99)); ";
                m_recorder->follow(
                    "finish = () => { " + lines + "setTimeout(() => { " + say
                    + "('more'); keep('notes', 'all'); process.exit(0); }, 50); }; say('ready');");
                QFile::remove(m_home->path(u".quib-live/notes"_s));
                QProcess program;
                program.start(QCoreApplication::applicationFilePath(), {how, m_home->home().path()});
                QTRY_COMPARE(program.state(), QProcess::NotRunning);
                const pid_t recorder = m_recorder->pid();
                if (how == "crash"_L1) {
                    m_notes->watch();
                    QTRY_COMPARE(state().others, QList<pid_t>{recorder});
                    m_notes->start();
                    QCOMPARE(state().status, u"Already running — stop it first."_s);
                    m_notes->stop();
                    QCOMPARE(state().status, u"Stopping the copy started outside the notch…"_s);
                    m_notes = m_world->notes();
                }
                QTRY_COMPARE(m_recorder->kept("notes"), "all\n");
                QTRY_VERIFY(!isAlive(recorder));
            }
    }

    void onlyWhatARecorderHasLeftBehindIsKilled()
    {
        m_notes = m_world->notes({.poll = 1h, .firstLook = 1s, .secondLook = 200ms});
        const pid_t heeds = leave("node", false, true);
        const pid_t stubborn = leave("node", true, false);
        const pid_t child = leave("ffmpeg", false, false);
        const pid_t orphan = leave("ffmpeg", true, false);
        const pid_t other = leave("tail", true, true);
        m_notes->watch();
        QTRY_COMPARE(
            QSet(state().others.begin(), state().others.end()), QSet({heeds, stubborn, child, orphan}));
        m_notes->stop();
        const pid_t late = leave("ffmpeg", true, false); // which was not asked
        QTRY_VERIFY(!isAlive(orphan));
        QTRY_COMPARE(QSet(state().others.begin(), state().others.end()), QSet({stubborn, child, late}));
        QVERIFY(isAlive(other));
        QVERIFY(isAlive(late) && isAlive(child) && isAlive(stubborn));
    }

    void itsOwnProcessesAreNotOthers()
    {
        m_recorder->follow(
            "import { spawn } from 'node:child_process';\n"
            "const child = spawn(process.cwd() + '/sessions/ffmpeg', ['60'], { stdio: 'inherit' });\n"
            "child.on('spawn', () => say('child ' + child.pid)); finish = () => process.exit(0);");
        m_notes = m_world->notes({.poll = 50ms, .firstLook = 100ms, .secondLook = 50ms});
        m_notes->watch();
        start();
        QTRY_VERIFY(state().status.startsWith("child "_L1));
        const pid_t child = state().status.sliced(6).toInt();
        m_pids.append(child);
        const qsizetype scans = m_recorder->scans();
        QTRY_VERIFY(m_recorder->scans() > scans + 2); // so that one which has begun since has been published
        QCOMPARE(state().others, QList<pid_t>());
        const pid_t other = leave("node", false, true);
        QTRY_COMPARE(state().others, QList<pid_t>{other});
        m_notes->stop();
        QCOMPARE(state().status, u"Finishing — last transcription and notes pass…"_s);
        QTRY_VERIFY(!isAlive(other));
        QTRY_COMPARE(
            state().others, QList<pid_t>{child}); // which was not asked: signals go to the recorder alone
        m_notes->stop();
        QTRY_COMPARE(state().others, QList<pid_t>());
    }

    void aScanThatHangsIsGivenUp()
    {
        m_world->patience = 2s;
        m_notes = m_world->notes();
        const pid_t other = leave("node", false, true);
        m_notes->watch();
        QTRY_COMPARE(state().others, QList<pid_t>{other});
        m_home->writeScript(u".quib-live/pgrep"_s, "#!/bin/sh\nexec sleep 600\n");
        QElapsedTimer timer;
        timer.start();
        m_notes->start();
        QVERIFY(timer.elapsed() < 300'000);
        QCOMPARE(state().others, QList<pid_t>{other});
        m_notes = m_world->notes();
        m_notes->start();
        QCOMPARE(state().phase, Phase::Idle);
        QCOMPARE(m_recorder->log().last(), u"start refused: pgrep gives no answer"_s);
        QVERIFY(QFile::remove(m_recorder->pgrep()));
        m_notes->start();
        QCOMPARE(m_recorder->log().last(), u"start refused: pgrep gives no answer"_s);
    }

    void whatALaterScanHasFoundHolds()
    {
        const pid_t other = leave("node", false, true);
        m_home->writeScript(
            u".quib-live/pgrep"_s,
            "#!/bin/sh\n[ -e \"$0.done\" ] && : > \"$0.again\"; [ -e \"$0.late\" ] && exit 1\n: > "
            "\"$0.late\"; sleep 0.2; echo "
                + QByteArray::number(other) + "; : > \"$0.done\"\n");
        bool hasFoundOthers = false;
        connect(m_notes.get(), &MeetingNotes::changed, this, [&] {
            hasFoundOthers = hasFoundOthers || !state().others.isEmpty();
        });
        m_notes->watch();
        QTRY_VERIFY(QFile::exists(m_recorder->pgrep() + u".late"));
        start();
        QTRY_VERIFY(QFile::exists(m_recorder->pgrep() + u".done"));
        m_notes->stop(); // has it look again, after what is still to be published
        QTRY_VERIFY(QFile::exists(m_recorder->pgrep() + u".again"));
        QVERIFY(!hasFoundOthers && state().others.isEmpty());
    }

    void theLogIsARegularFileOrNone()
    {
        const QString log = m_home->path(u".quib-live/notch.log"_s);
        const QByteArray path = QFile::encodeName(log);
        const QByteArray target = QFile::encodeName(m_home->write(u"target"_s, "old\n"));
        m_notes->trace(u"ä"_s);
        m_notes->trace(u"b"_s);
        QCOMPARE(m_recorder->kept("notch.log"), "ä\nb\n");
        struct stat info { };
        QVERIFY(::stat(path.constData(), &info) == 0 && (info.st_mode & 0777) == 0600);
        QVERIFY(QFile::remove(log) && ::symlink(target.constData(), path.constData()) == 0);
        m_notes->trace(u"mine"_s);
        QCOMPARE(m_home->read(u"target"_s), "old\nmine\n");
        if (::lchown(path.constData(), 12345, 12345) == 0) { // somebody else's
            m_notes->trace(u"no"_s);
            QCOMPARE(m_home->read(u"target"_s), "old\nmine\n");
        }
        QVERIFY(QFile::remove(log) && ::mkfifo(path.constData(), 0600) == 0);
        m_notes->trace(u"nobody reads it"_s);
        const int reader = ::open(path.constData(), O_RDONLY | O_NONBLOCK);
        m_notes->trace(u"somebody does"_s);
        char byte = 0;
        QVERIFY(::read(reader, &byte, 1) <= 0);
        ::close(reader);
        QVERIFY(QFile::remove(log) && QDir().mkdir(log));
        QCOMPARE(statusAfter("say('logged nowhere'); process.exit(0)"), u"logged nowhere"_s);
    }

    void aFloodIsTakenInWithoutGrowing()
    {
        const auto peak = [] { // kB
            QFile file(u"/proc/self/status"_s);
            const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
            return text.sliced(text.indexOf("VmHWM:") + 6, 12).trimmed().split(' ').first().toLongLong();
        };
        [[maybe_unused]] const qint64 before = peak();
        QCOMPARE(
            statusAfter("const big = Buffer.alloc(1e6, 'x'); let n = 0;\n"
                        "const more = () => ++n <= 100 ? process.stdout.write(big, more)\n"
                        "    : process.stdout.write('\\nshort\\n', () => process.exit(0)); more()"),
            u"short"_s);
#ifndef __SANITIZE_ADDRESS__ // which keeps what has been freed
        QVERIFY2(peak() - before < 40'000, QByteArray::number(peak() - before));
#endif
        QCOMPARE(QFileInfo(m_home->path(u".quib-live/notch.log"_s)).size() / 1'000'000, 100);
    }
};

// Ends as soon as the recorder has said something: by a crash, or as the program does.
static int recordAndEnd(bool crashes, const QString &folder)
{
    World world{Home(folder)};
    const std::unique_ptr<MeetingNotes> notes = world.notes();
    QObject::connect(notes.get(), &MeetingNotes::changed, notes.get(), [&] {
        if (notes->state().status != "ready"_L1)
            return;
        if (crashes)
            ::raise(SIGKILL);
        notes->interruptRecorder();
        QCoreApplication::exit();
    });
    notes->start();
    return QCoreApplication::exec();
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc == 3 && (argv[1] == QByteArray("crash") || argv[1] == QByteArray("quit")))
        return recordAndEnd(argv[1] == QByteArray("crash"), QFile::decodeName(argv[2]));
    MeetingNotesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_meeting_notes.moc"
