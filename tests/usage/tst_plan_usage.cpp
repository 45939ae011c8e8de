#include <QAbstractButton>
#include <QLabel>
#include <QTest>
#include <QTimer>

#include <sys/stat.h>

#include "Shell/Defaults.h"
#include "Usage/LimitRow.h"
#include "Usage/PlanUsageMonitor.h"
#include "Usage/UsageCardContent.h"
#include "support/FakeDesktopPreferences.h"
#include "support/ManualClock.h"
#include "usage/UsageCache.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// "problem" or the session's percentage, and the names of the entries when the folder was listed.
QByteArray printed(const ReadOutcome &outcome)
{
    static const std::array<QByteArray, 3> problems{"no cache", "no zstd", "unreadable"};
    const Reading *reading = std::get_if<Reading>(&outcome.result);
    QByteArray text = reading ? QByteArray::number(qRound(reading->windows.session->fraction * 100))
                              : problems.at(static_cast<size_t>(std::get<ReadProblem>(outcome.result)));
    if (outcome.entries)
        text += ':';
    for (const QByteArray &each : outcome.entries.value_or(QList<QByteArray>()))
        text += ' ' + each.mid(each.lastIndexOf('/') + 1);
    return text;
}

} // namespace

class PlanUsageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cache.emplace();
        m_clock = ManualClock();
        m_zstd = u"/usr/bin/zstd"_s;
    }
    void cleanup()
    {
        m_card.reset();
        m_monitor.reset();
    }

    void theNewestAnswerIsReadBehindItsTrailingRecords()
    {
        add(u"old_0"_s, 10, 2ms);
        add(u"new_0"_s, 20, 0ms);
        add(u"newer_1"_s, 30, -1ms);
        m_cache->add(
            u"other_0"_s, UsageCache::entry(UsageCache::keyFor("/api/x"), "body"), m_clock.now() + 2ms);
        QCOMPARE(read(), "20: new_0 old_0");
    }

    void whatCannotBeReadIsPassedOver()
    {
        m_cache->add(u"a_0"_s, UsageCache::entry(UsageCache::keyFor("/"), "body"), m_clock.now());
        QCOMPARE(read(), "no cache:");
        for (const QByteArray &body :
             {QByteArray("plain"), QByteArray("\x28\xb5\x2f\xfdnoise"), UsageCache::compressed("{}")}) {
            m_cache->add(u"b_0"_s, UsageCache::entry(UsageCache::usageKey(), body), m_clock.now());
            QCOMPARE(read(), "unreadable: b_0");
        }
        add(u"c_0"_s, 10, 9ms);
        QCOMPARE(read(), "10: b_0 c_0");
    }

    void knownEntriesAreTrustedUntilNoneCanBeRead()
    {
        const QByteArray known = add(u"a_0"_s, 10, 0ms);
        add(u"b_0"_s, 20, -1ms);
        QCOMPARE(read({m_cache->nativePath(u"gone_0"_s), known}), "10");
        QFile::resize(QFile::decodeName(known), 600'000);
        QCOMPARE(read({known}), "20: b_0");
    }

    void whatIsNoFileOfAnEntrysSizeIsPassedOver()
    {
        m_cache->add(u"big_0"_s, UsageCache::usageEntry(10).leftJustified(524'288, 'x'), m_clock.now());
        m_cache->add(u"largest_0"_s, UsageCache::usageEntry(20).leftJustified(524'287, 'x'), m_clock.now());
        m_cache->add(u"empty_0"_s, {}, m_clock.now());
        m_cache->add(u"header_0"_s, QByteArray(24, '\1'), m_clock.now());
        QDir(m_cache->folder()).mkdir(u"folder_0"_s);
        QFile::link(u"loop_0"_s, m_cache->folder() + u"/loop_0");
        QCOMPARE(::mkfifo(m_cache->nativePath(u"pipe_0"_s).constData(), 0600), 0);
        const QList<QByteArray> known{m_cache->nativePath(u"pipe_0"_s), m_cache->nativePath(u"folder_0"_s)};
        QCOMPARE(read(known), "20: largest_0");
    }

    void theSixHundredNewestOfTwentyThousandAreLookedInto()
    {
        const QByteArray other = UsageCache::entry(UsageCache::keyFor("/api/x"), "body");
        for (qint64 i = 0; i < 19'998; ++i)
            m_cache->add(u"%1_0"_s.arg(i, 16, 16, QChar(u'0')), other, m_clock.now() + i * 1s);
        add(u"young_0"_s, 10, -19'997'500ms);
        // 598 others and the young one are newer.
        add(u"old_0"_s, 20, -19'399'500ms);
        QCOMPARE(read(), "10: young_0 old_0");
        add(u"old_0"_s, 20, -19'398'500ms);
        QCOMPARE(read(), "10: young_0");
    }

    void aFileThatHasChangedIsLookedIntoAgain()
    {
        const QByteArray usage = UsageCache::usageEntry(10);
        const QByteArray other(usage.size(), 'x');
        PlanUsageReader first = reader();
        for (const QByteArray &bytes : {other, usage, other}) {
            QFile::remove(m_cache->folder() + u"/a_0");
            m_cache->add(u"a_0"_s, bytes, m_clock.now());
            for (int look = 0; look < 2; ++look)
                QCOMPARE(printed(first.read({})), bytes == usage ? "10: a_0" : "no cache:");
        }
    }

    void aFolderThatHasNotChangedIsListedOnceMore()
    {
        m_cache->add(u"a_0"_s, {}, m_clock.now());
        PlanUsageReader once = reader(), twice = reader();
        for (PlanUsageReader *each : {&once, &twice, &twice})
            QCOMPARE(printed(each->read({})), "no cache:");
        add(u"a_0"_s, 10, 0ms); // its key comes late
        QCOMPARE(printed(once.read({})), "10: a_0");
        QCOMPARE(printed(twice.read({})), "no cache:");
    }

    void onlyEntriesThatHaveChangedAreDecompressed()
    {
        PlanUsageReader first = reader();
        const auto afterThreeReads = [&]() -> QByteArray {
            const auto all = {printed(first.read({})), printed(first.read({})), printed(first.read({}))};
            return *std::rbegin(all) + ", run " + QByteArray::number(runs());
        };
        setCountingZstd("exec zstd -dc");
        add(u"a_0"_s, 10, 0ms);
        QCOMPARE(afterThreeReads(), "10: a_0, run 1");
        add(u"a_0"_s, 20, 0ms); // as long and as old
        QCOMPARE(afterThreeReads(), "20: a_0, run 2");
        const QByteArray noise = UsageCache::entry(UsageCache::usageKey(), "\x28\xb5\x2f\xfdnoise");
        m_cache->add(u"a_0"_s, noise, m_clock.now());
        QCOMPARE(afterThreeReads(), "unreadable: a_0, run 3");
        setCountingZstd("exit 127"); // which is not for what it was given
        add(u"a_0"_s, 30, 0ms);
        QCOMPARE(afterThreeReads(), "unreadable: a_0, run 6");
        setCountingZstd("exec zstd -dc");
        QCOMPARE(afterThreeReads(), "30: a_0, run 7");
    }

    void aDecompressionThatHangsEndsTheWholeRead()
    {
        add(u"a_0"_s, 10, 0ms);
        add(u"b_0"_s, 10, 0ms);
        setCountingZstd("exec sleep 600");
        QVERIFY(printed(reader({.time = 300ms}).read({})).startsWith("unreadable: "));
        QVERIFY(runs() <= 1);
    }

    void anEntryThatIsBeingWrittenIsLookedAtAgain()
    {
        for (const bool isKnown : {true, false}) {
            const QByteArray entry = add(u"a_0"_s, 10, 0ms);
            const QByteArray older = add(u"b_0"_s, 20, 1ms);
            // The fresh answer is whole again as soon as the older one has been read.
            m_zstd = m_cache->writeScript(
                u"zstd"_s, "#!/bin/sh\nzstd -dc\ncd \"${0%/*}\" && [ -e whole ] && mv whole " + entry + '\n');
            PlanUsageReader first = reader();
            QCOMPARE(printed(first.read({})), "10: a_0 b_0");
            m_cache->write(u"whole"_s, UsageCache::usageEntry(30));
            m_cache->add(u"a_0"_s, {}, m_clock.now() + 1ms);
            const QList<QByteArray> known = isKnown ? QList{entry, older} : QList<QByteArray>{};
            QCOMPARE(printed(first.read(known)), isKnown ? "30" : "30: a_0 b_0");

            QFile::remove(QFile::decodeName(entry));
            QCOMPARE(printed(first.read(known)), isKnown ? "20" : "20: b_0");
            QFile::remove(QFile::decodeName(older));
            QCOMPARE(printed(first.read(known)), "no cache:");
        }
    }

    void numbersThatAreOldAreShownWithANotice()
    {
        add(u"a_0"_s, 42, 30min);
        start();
        QCOMPARE(shown(), u"42");
        QVERIFY(!m_monitor->isOld());
        m_clock.advance(1ms);
        QCOMPARE(afterRefresh(), u"42, Updated 30 min ago — open Claude to refresh");
        QVERIFY(m_monitor->isOld());
        add(u"a_0"_s, 43, 0min);
        QCOMPARE(afterRefresh(), u"43");
    }

    void numbersOutliveAFailure()
    {
        start();
        QCOMPARE(shown(), u"none, Open the Claude app to load plan usage");
        add(u"a_0"_s, 42, 0min);
        QCOMPARE(afterRefresh(), u"42"); // a failure leaves no entries to trust: the folder is listed again
        m_cache->add(u"a_0"_s, UsageCache::entry(UsageCache::usageKey(), "plain"), m_clock.now());
        QCOMPARE(afterRefresh(), u"42, Couldn't read Claude's usage cache");
        QVERIFY(!m_monitor->isOld());
        m_clock.advance(31min);
        m_zstd.clear();
        QVERIFY(!afterRefresh().isEmpty() && m_monitor->isOld()); // whatever the reason
        QCOMPARE(shown(), u"42, Install zstd (sudo apt install zstd) to read plan usage");
    }

    void theKnownEntriesAreTrustedForThreeMinutesUnlessTheClockIsSetBack()
    {
        add(u"a_0"_s, 10, 1min);
        start();
        add(u"b_0"_s, 20, 0min);
        QCOMPARE(afterRefresh(), u"10");
        m_clock.advance(179999ms);
        QCOMPARE(afterRefresh(), u"10");
        m_clock.advance(1ms);
        QCOMPARE(afterRefresh(), u"20");
        add(u"c_0"_s, 30, 0min);
        QCOMPARE(afterRefresh(), u"20");
        QCOMPARE(afterRefresh(true), u"30");
        add(u"d_0"_s, 40, -1min);
        m_clock.advance(-1h);
        QCOMPARE(afterRefresh(), u"40"); // nor is it old
    }

    void aFolderThatDoesNotSeemToHaveChangedIsListedEveryHalfHour()
    {
        m_cache->add(u"a_0"_s, {}, m_clock.now());
        start();
        afterRefresh();
        add(u"a_0"_s, 10, 0min);
        m_clock.advance(30min - 1ms);
        QCOMPARE(afterRefresh(), u"none, Open the Claude app to load plan usage");
        m_clock.advance(1ms);
        QCOMPARE(afterRefresh(), u"10");
    }

    void itReadsByItselfEveryTenSeconds()
    {
        add(u"a_0"_s, 42, 1min);
        start();
        add(u"a_0"_s, 43, 0min);
        auto *timer = m_monitor->findChild<QTimer *>();
        QCOMPARE(timer->intervalAsDuration(), 10s);
        timer->setInterval(1ms);
        QTRY_COMPARE(shown(), u"43");
    }

    void theUserMayPreferTheAnswersOfAnotherService()
    {
        using Row = std::pair<const char *, const char *>;
        for (const auto &[preferred, domain] :
             {Row("=Example.ORG", "example.org"), Row("=", "claude.ai"), Row("=\" \"", "claude.ai"),
              Row(".not=a", "claude.ai")}) {
            m_cache.emplace();
            const QByteArray text = QByteArray("[General]\nplanUsage.domain") + preferred;
            const Defaults defaults(m_cache->write(u"a.conf"_s, text));
            QCOMPARE(PlanUsageMonitor::domainIn(defaults), QLatin1String(domain));
        }
    }

    void aMonitorCanGoInTheMiddleOfARead()
    {
        add(u"a_0"_s, 42, 0min);
        m_zstd = m_cache->writeScript(u"zstd"_s, "#!/bin/sh\n: > \"${0%/*}/started\"\nexec sleep 600\n");
        m_monitor = std::make_unique<PlanUsageMonitor>(reader(), m_clock);
        QTRY_VERIFY(QFile::exists(m_cache->path(u"started"_s)));
        m_monitor.reset(); // which would take until this test has no time left
        QCoreApplication::processEvents();
    }

    void theCardSaysHowMuchIsUsedAndWhenItStartsAnew()
    {
        addAnswer(R"({"five_hour":{"utilization":42.9,"resets_at":"2026-09-21T15:12:20Z"},)"
                  R"("seven_day":{"utilization":150}})");
        openCard();
        QTRY_COMPARE(onCard(), u"Current session, 42% Used, Resets in 59 min; All models, 100% Used"_s);
        m_clock.advance(1min);
        QTRY_COMPARE(onCard(), u"Current session, 42% Used, Resets in 58 min; All models, 100% Used"_s);
    }

    void theCardsButtonReadsAtOnceWhatWasNotKnown()
    {
        openCard();
        const auto unknown = u"Current session, not known; All models, not known; "_s;
        QTRY_COMPARE(onCard(), unknown + u"Open the Claude app to load plan usage");
        QTRY_VERIFY(!m_monitor->isRefreshing());
        addAnswer(R"({"seven_day":{"utilization":7}})");
        auto *button = m_card->findChild<QAbstractButton *>();
        QCOMPARE(button->accessibleName(), u"Refresh now"_s);
        button->click();
        QVERIFY(m_monitor->isRefreshing());
        QTRY_COMPARE(onCard(), u"Current session, not known; All models, 7% Used"_s);
    }

private:
    PlanUsageReader reader(CommandLimits limits = {}) const
    {
        const auto findZstd = [this] { return m_zstd.isEmpty() ? std::nullopt : std::optional(m_zstd); };
        return PlanUsageReader(
            m_cache->folder(), PlanUsageMonitor::defaultDomain, findZstd, {limits, 1ms},
            [] { return QByteArray("ID=debian"); });
    }
    void setCountingZstd(const QByteArray &line)
    {
        m_zstd = m_cache->writeScript(u"zstd"_s, "#!/bin/sh\nprintf x >> \"${0%/*}/runs\"\n" + line + '\n');
    }
    qsizetype runs() const { return m_cache->read(u"runs"_s).size(); }
    QByteArray read(const QList<QByteArray> &known = {}) const { return printed(reader().read(known)); }
    QByteArray add(const QString &name, int percent, std::chrono::milliseconds age) const
    {
        return m_cache->add(name, UsageCache::usageEntry(percent), m_clock.now() - age);
    }
    void start()
    {
        m_monitor = std::make_unique<PlanUsageMonitor>(reader(), m_clock);
        QTRY_VERIFY(!m_monitor->isRefreshing());
    }
    QString afterRefresh(bool rescan = false)
    {
        m_monitor->refresh(rescan);
        return QTest::qWaitFor([this] { return !m_monitor->isRefreshing(); }) ? shown() : u"no end"_s;
    }
    QString shown() const
    {
        const auto &session = m_monitor->windows().session;
        const QString number = session ? QString::number(qRound(session->fraction * 100)) : u"none"_s;
        const auto &problem = m_monitor->problem();
        return problem ? number + u", " + *problem : number;
    }
    void addAnswer(const QByteArray &json) const
    {
        const QByteArray body = UsageCache::compressed(json);
        m_cache->add(u"a_0"_s, UsageCache::entry(UsageCache::usageKey(), body), m_clock.now());
    }
    void openCard()
    {
        m_monitor =
            std::make_unique<PlanUsageMonitor>(m_cache->home(), m_clock, PlanUsageMonitor::defaultDomain);
        m_card = std::make_unique<UsageCardContent>(*m_monitor, m_clock, m_preferences);
        m_card->show();
    }
    // The rows, and the problem if there is one.
    QString onCard() const
    {
        QStringList texts;
        for (const auto *row : m_card->findChildren<LimitRow *>())
            texts.append(row->accessibleName());
        if (const auto *label = m_card->findChild<QLabel *>(); label->isVisible())
            texts.append(label->text());
        return texts.join(u"; "_s);
    }

    std::optional<UsageCache> m_cache;
    ManualClock m_clock;
    QString m_zstd;
    FakeDesktopPreferences m_preferences;
    std::unique_ptr<PlanUsageMonitor> m_monitor;
    std::unique_ptr<UsageCardContent> m_card;
};

QTEST_MAIN(PlanUsageTest)
#include "tst_plan_usage.moc"
