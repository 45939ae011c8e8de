#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cmath>

#include "Meeting/MicLevel.h"
#include "Platform/Pulse/PulseAudioInput.h"

using namespace nubble;
using namespace Qt::StringLiterals;

namespace {

const LevelMeter::Bars atRest{};

// A sine of half the full scale, 20 dB lower, is this loud.
const float toneLevel = (10 * std::log10(0.5F * 0.5F / 2) - 20 + 55) / 40;

bool isNear(float value, float expected)
{
    return std::abs(value - expected) < 0.005F;
}

} // namespace

// The meter on a sound server of its own, which has a source that is silent and one that hears a tone.
class MicLevelTest : public QObject {
    Q_OBJECT

private:
    void startServer()
    {
        m_server.start(
            u"pulseaudio"_s,
            {u"-n"_s, u"--daemonize=no"_s, u"--use-pid-file=no"_s, u"--exit-idle-time=-1"_s, u"-L"_s,
             u"module-native-protocol-unix auth-anonymous=1 socket="_s + socket(), u"-L"_s,
             u"module-null-sink sink_name=room rate=48000"_s, u"-L"_s,
             u"module-sine sink=room frequency=440"_s, u"-L"_s, u"module-null-sink sink_name=quiet"_s});
        QTRY_VERIFY(!pactl({u"info"_s}).isEmpty());
        listenTo(u"room.monitor"_s);
        pactl({u"set-source-volume"_s, u"room.monitor"_s, u"-20dB"_s});
    }
    static void listenTo(const QString &source) { pactl({u"set-default-source"_s, source}); }
    static QByteArray pactl(const QStringList &arguments)
    {
        QProcess process;
        process.start(u"pactl"_s, arguments);
        process.waitForFinished();
        return process.readAll();
    }
    [[nodiscard]] QString socket() const { return m_folder.filePath(u"native"_s); }

    QTemporaryDir m_folder;
    QProcess m_server;
    PulseAudioInput m_input;
    SystemClock m_clock;

private Q_SLOTS:
    void initTestCase()
    {
        for (const char *each :
             {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"})
            qputenv(each, QFile::encodeName(m_folder.path()));
        qputenv("PULSE_SERVER", "unix:" + QFile::encodeName(socket()));
    }
    void cleanup()
    {
        m_server.terminate();
        m_server.waitForFinished();
    }

    void theMeterShowsTheTone()
    {
        startServer();
        MicLevel mic(m_input, m_clock);
        const QSignalSpy failures(&mic, &MicLevel::failed);
        QVERIFY(pactl({u"list"_s, u"source-outputs"_s}).isEmpty());
        mic.start();
        QTRY_VERIFY(isNear(mic.level(), toneLevel) && isNear(mic.bars().back(), toneLevel));
        QTRY_VERIFY(isNear(mic.bars()[LevelMeter::barCount - 8], toneLevel));
        const QByteArray streams = pactl({u"list"_s, u"source-outputs"_s});
        QVERIFY(streams.contains("application.name = \"Nubble\""));
        QVERIFY(streams.contains("media.name = \"Microphone level for meeting notes\""));
        mic.stop();
        QVERIFY(mic.level() == 0 && mic.bars() == atRest);
        QTRY_VERIFY(pactl({u"list"_s, u"source-outputs"_s}).isEmpty());
        QVERIFY(failures.isEmpty());
    }

    void itFollowsTheDefaultSource()
    {
        startServer();
        MicLevel mic(m_input, m_clock);
        mic.start();
        QTRY_VERIFY(isNear(mic.level(), toneLevel));
        listenTo(u"quiet.monitor"_s);
        QTRY_COMPARE_WITH_TIMEOUT(mic.bars().back(), 0.0F, 20000);
        listenTo(u"room.monitor"_s);
        QTRY_VERIFY_WITH_TIMEOUT(isNear(mic.level(), toneLevel), 20000);
        pactl({u"unload-module"_s, u"module-null-sink"_s}); // the tone goes with its room
        QTRY_COMPARE(mic.level(), 0.0F);
        pactl({u"load-module"_s, u"module-sine-source"_s});
        QTRY_VERIFY_WITH_TIMEOUT(mic.bars().back() == 1, 20000);
    }

    void itWaitsForAServerAndForTheNext()
    {
        MicLevel mic(m_input, m_clock);
        QSignalSpy failures(&mic, &MicLevel::failed);
        mic.start();
        QTRY_COMPARE(failures.size(), 1);
        QVERIFY(!failures.first().first().toString().isEmpty());
        for (int i = 0; i < 2; ++i) {
            startServer();
            QTRY_VERIFY_WITH_TIMEOUT(isNear(mic.level(), toneLevel), 20000);
            m_server.kill();
            m_server.waitForFinished();
            QTRY_COMPARE(mic.level(), 0.0F);
        }
        QCOMPARE(failures.size(), 1);
    }
};

QTEST_GUILESS_MAIN(MicLevelTest)
#include "tst_mic_level.moc"
