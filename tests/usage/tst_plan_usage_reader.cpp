#include <QTest>

#include <sys/stat.h>

#include "Usage/PlanUsageReader.h"
#include "usage/UsageCache.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint noon(1'790'000'000s);

PlanUsageReader readerOf(const UsageCache &cache, const std::optional<QString> &zstd = u"/usr/bin/zstd"_s)
{
    return PlanUsageReader(cache.folder(), u"claude.ai"_s, [zstd] { return zstd; }, {{}, 1ms});
}

// "problem" or the session's percentage, and the names of the entries when the folder was listed.
QByteArray printed(const ReadOutcome &outcome)
{
    static const QMap<ReadProblem, QByteArray> problems{
        {ReadProblem::NoCache, "no cache"},
        {ReadProblem::NoZstd, "no zstd"},
        {ReadProblem::Unreadable, "unreadable"}};
    const Reading *reading = std::get_if<Reading>(&outcome.result);
    QByteArray text = reading ? QByteArray::number(qRound(reading->windows.session->fraction * 100))
                              : problems.value(std::get<ReadProblem>(outcome.result));
    if (outcome.entries)
        text += ':';
    for (const QByteArray &each : outcome.entries.value_or(QList<QByteArray>()))
        text += ' ' + each.mid(each.lastIndexOf('/') + 1);
    return text;
}

} // namespace

class PlanUsageReaderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theNewestAnswerIsReadBehindItsTrailingRecords()
    {
        const UsageCache cache;
        cache.add(u"old_0"_s, UsageCache::usageEntry(10), noon - 2ms);
        cache.add(u"new_0"_s, UsageCache::usageEntry(20), noon);
        cache.add(u"newer_1"_s, UsageCache::usageEntry(30), noon + 1ms);
        cache.add(u"other_0"_s, UsageCache::entry(UsageCache::keyFor("/api/x"), "body"), noon + 2ms);
        const ReadOutcome outcome = readerOf(cache).read({});
        QCOMPARE(printed(outcome), "20: new_0 old_0");
        QCOMPARE(std::get<Reading>(outcome.result).capturedAt, noon);
        QCOMPARE(std::get<Reading>(outcome.result).entry, cache.nativePath(u"new_0"_s));
    }

    void aProblemSaysWhatIsMissing()
    {
        const UsageCache cache;
        QCOMPARE(printed(readerOf(cache).read({})), "no cache:");
        cache.add(u"a_0"_s, UsageCache::entry(UsageCache::keyFor("/"), "body"), noon);
        QCOMPARE(printed(readerOf(cache).read({})), "no cache:");
        for (const QByteArray &body :
             {QByteArray("plain"), QByteArray("\x28\xb5\x2f\xfdnoise"), UsageCache::compressed("{}")}) {
            cache.add(u"b_0"_s, UsageCache::entry(UsageCache::usageKey(), body), noon);
            QCOMPARE(printed(readerOf(cache).read({})), "unreadable: b_0");
        }
        cache.add(u"c_0"_s, UsageCache::usageEntry(10), noon - 9ms);
        QCOMPARE(printed(readerOf(cache).read({})), "10: b_0 c_0");
        QCOMPARE(printed(readerOf(cache, std::nullopt).read({})), "no zstd");
    }

    void knownEntriesAreTrustedUntilNoneCanBeRead()
    {
        const UsageCache cache;
        const QByteArray known = cache.add(u"a_0"_s, UsageCache::usageEntry(10), noon);
        cache.add(u"b_0"_s, UsageCache::usageEntry(20), noon + 1ms);
        QCOMPARE(printed(readerOf(cache).read({cache.nativePath(u"gone_0"_s), known})), "10");
        QFile::resize(QFile::decodeName(known), 600'000);
        QCOMPARE(printed(readerOf(cache).read({known})), "20: b_0");
    }

    void whatIsNoFileOfAnEntrysSizeIsPassedOver()
    {
        const UsageCache cache;
        cache.add(u"big_0"_s, UsageCache::usageEntry(10).leftJustified(524'288, 'x'), noon);
        cache.add(u"largest_0"_s, UsageCache::usageEntry(20).leftJustified(524'287, 'x'), noon);
        cache.add(u"empty_0"_s, {}, noon);
        cache.add(u"header_0"_s, QByteArray(24, '\1'), noon);
        QDir(cache.folder()).mkdir(u"folder_0"_s);
        QFile::link(u"loop_0"_s, cache.folder() + u"/loop_0");
        QCOMPARE(::mkfifo(cache.nativePath(u"pipe_0"_s).constData(), 0600), 0);
        const QList<QByteArray> known{cache.nativePath(u"pipe_0"_s), cache.nativePath(u"folder_0"_s)};
        QCOMPARE(printed(readerOf(cache).read(known)), "20: largest_0");
    }

    void theSixHundredNewestOfTwentyThousandAreLookedInto()
    {
        const UsageCache cache;
        const QByteArray other = UsageCache::entry(UsageCache::keyFor("/api/x"), "body");
        for (qint64 i = 0; i < 19'998; ++i)
            cache.add(u"%1_0"_s.arg(i, 16, 16, QChar(u'0')), other, noon + i * 1s);
        cache.add(u"young_0"_s, UsageCache::usageEntry(10), noon + 19'997'500ms);
        // 598 others and the young one are newer.
        cache.add(u"old_0"_s, UsageCache::usageEntry(20), noon + 19'399'500ms);
        QCOMPARE(printed(readerOf(cache).read({})), "10: young_0 old_0");
        cache.add(u"old_0"_s, UsageCache::usageEntry(20), noon + 19'398'500ms);
        QCOMPARE(printed(readerOf(cache).read({})), "10: young_0");
    }

    void aFileThatHasChangedIsLookedIntoAgain()
    {
        const UsageCache cache;
        const QByteArray usage = UsageCache::usageEntry(10);
        const QByteArray other(usage.size(), 'x');
        PlanUsageReader reader = readerOf(cache);
        for (const QByteArray &bytes : {other, usage, other}) {
            cache.add(u"a_0"_s, bytes, noon);
            for (int look = 0; look < 2; ++look)
                QCOMPARE(printed(reader.read({})), bytes == usage ? "10: a_0" : "no cache:");
        }
    }

    void anEntryThatIsBeingWrittenIsLookedAtAgain()
    {
        for (const bool isKnown : {true, false}) {
            const UsageCache cache;
            const QByteArray entry = cache.add(u"a_0"_s, UsageCache::usageEntry(10), noon);
            const QByteArray older = cache.add(u"b_0"_s, UsageCache::usageEntry(20), noon - 1ms);
            // The fresh answer is whole again as soon as the older one has been read.
            const QString zstd = cache.writeScript(
                u"zstd"_s, "#!/bin/sh\nzstd -dc\ncd \"${0%/*}\" && [ -e whole ] && mv whole " + entry + '\n');
            PlanUsageReader reader = readerOf(cache, zstd);
            QCOMPARE(printed(reader.read({})), "10: a_0 b_0");
            cache.write(u"whole"_s, UsageCache::usageEntry(30));
            cache.add(u"a_0"_s, {}, noon + 1ms);
            const QList<QByteArray> known = isKnown ? QList{entry, older} : QList<QByteArray>{};
            QCOMPARE(printed(reader.read(known)), isKnown ? "30" : "30: a_0 b_0");

            QFile::remove(QFile::decodeName(entry));
            QCOMPARE(printed(reader.read(known)), isKnown ? "20" : "20: b_0");
            QFile::remove(QFile::decodeName(older));
            QCOMPARE(printed(reader.read(known)), "no cache:");
        }
    }
};

QTEST_GUILESS_MAIN(PlanUsageReaderTest)
#include "tst_plan_usage_reader.moc"
