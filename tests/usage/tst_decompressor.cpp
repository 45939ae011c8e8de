#include <QElapsedTimer>
#include <QTest>

#include "Usage/Decompressor.h"
#include "usage/UsageCache.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

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
    void theFrameComesOutWhateverFollowsItOrNothing()
    {
        const QByteArray plain = QByteArray("usage ").repeated(100'000);
        QCOMPARE(decompress(u"/usr/bin/zstd"_s, UsageCache::compressed(plain).append(5000, 'x')), plain);
        QVERIFY(!decompress(u"/usr/bin/zstd"_s, "no frame"));
        QVERIFY(!decompress(u"/usr/bin/zstd"_s, {}));
        QVERIFY(!decompress(u"/usr/bin/zstd"_s, UsageCache::compressed(QByteArray(20'000'000, ' '))));
        QVERIFY(!decompress(m_home.path(u"missing"_s), "x"));
        QVERIFY(!decompress(m_home.writeScript(u"binary"_s, "no script"), "x"));
    }

    void aCommandThatMisbehavesIsEnded()
    {
        const QByteArray folder = QFile::encodeName(m_home.path(u"."_s));
        for (const auto &[script, output] :
             {std::pair(QByteArray("sleep 60 & echo $! > pid; wait"), QByteArray()), // never reads nor writes
              {"echo $$ > pid; exec yes", {}},
              {"echo $$ > pid; echo half; exec sleep 60", {}},
              {"sleep 60 & echo $! > pid", {}},                           // leaves a child behind
              {"echo $$ > pid; echo all; exec sleep 60 >&-", "all\n"}}) { // has written all, but stays
            const QString command =
                m_home.writeScript(u"misbehaves"_s, "#!/bin/sh\ncd " + folder + '\n' + script + '\n');
            QElapsedTimer timer;
            timer.start();
            QCOMPARE(
                decompress(command, QByteArray(500'000, 'x'), {1'000'000, 300ms}).value_or(QByteArray()),
                output);
            QVERIFY2(timer.elapsed() < 10000, script);
            QTRY_VERIFY2(isGone(m_home.path(u"pid"_s)), script);
        }
    }

private:
    TemporaryHome m_home;
};

QTEST_GUILESS_MAIN(DecompressorTest)
#include "tst_decompressor.moc"
