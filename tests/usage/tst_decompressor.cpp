#include <QElapsedTimer>
#include <QTest>

#include <thread>

#include "Usage/Decompressor.h"
#include "usage/UsageCache.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr DecompressionLimits shortLimits{1'000'000, 300ms};

// A process that has ended has no command line, even while nobody has taken note of its end.
bool isGone(const QString &pidFile)
{
    QFile file(pidFile);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QFile commandLine(u"/proc/%1/cmdline"_s.arg(file.readAll().trimmed().toInt()));
    return !commandLine.open(QIODevice::ReadOnly) || commandLine.readAll().isEmpty();
}

} // namespace

class DecompressorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFrameComesOutWhateverFollowsIt()
    {
        const QByteArray plain = QByteArray("usage ").repeated(100'000);
        QCOMPARE(decompress(u"/usr/bin/zstd"_s, UsageCache::compressed(plain).append(5000, 'x')), plain);
        QVERIFY(!decompress(u"/usr/bin/zstd"_s, "no frame"));
        QVERIFY(!decompress(u"/usr/bin/zstd"_s, {}));
        QVERIFY(!decompress(u"/usr/bin/zstd"_s, UsageCache::compressed(QByteArray(20'000'000, ' '))));
    }

    void theCommandGetsOneArgument()
    {
        const QString script = m_home.writeScript(u"arguments"_s, "#!/bin/sh\necho $# $1\n");
        QCOMPARE(decompress(script, QByteArray(500'000, 'x')), "1 -dc\n");
    }

    void aCommandThatCannotBeStartedGivesNothing()
    {
        QVERIFY(!decompress(m_home.path(u"missing"_s), "x"));
        QVERIFY(!decompress(m_home.write(u"document"_s, "text"), "x"));
        QVERIFY(!decompress(m_home.writeScript(u"binary"_s, "no script"), "x"));
    }

    void aCommandThatMisbehavesIsEnded_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QByteArray>("output");
        QTest::newRow("never reads, never writes")
            << QByteArray("sleep 60 & echo $! > pid; wait") << QByteArray();
        QTest::newRow("floods") << QByteArray("echo $$ > pid; exec yes") << QByteArray();
        QTest::newRow("does not stop")
            << QByteArray("echo $$ > pid; echo half; exec sleep 60") << QByteArray();
        QTest::newRow("leaves a child behind") << QByteArray("sleep 60 & echo $! > pid") << QByteArray();
        QTest::newRow("has written all but stays")
            << QByteArray("echo $$ > pid; echo all; exec sleep 60 >&-") << QByteArray("all\n");
    }
    void aCommandThatMisbehavesIsEnded()
    {
        QFETCH(QByteArray, script);
        QFETCH(QByteArray, output);
        const QByteArray folder = QFile::encodeName(m_home.path(u"."_s));
        const QString command =
            m_home.writeScript(u"misbehaves"_s, "#!/bin/sh\ncd " + folder + '\n' + script + '\n');
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(decompress(command, QByteArray(500'000, 'x'), shortLimits).value_or(QByteArray()), output);
        QVERIFY(timer.elapsed() < 10000);
        QTRY_VERIFY(isGone(m_home.path(u"pid"_s)));
    }

    void aRunCanBeStoppedFromAnotherThread()
    {
        const QString script = m_home.writeScript(u"slow"_s, "#!/bin/sh\nexec sleep 60\n");
        std::stop_source stop;
        QElapsedTimer timer;
        timer.start();
        const std::jthread stopper([&stop] { stop.request_stop(); });
        QVERIFY(!decompress(script, "x", {}, stop.get_token()));
        QVERIFY(timer.elapsed() < 8000);
    }

private:
    TemporaryHome m_home;
};

QTEST_GUILESS_MAIN(DecompressorTest)
#include "tst_decompressor.moc"
