#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <memory>

#include "Usage/PlanUsageMonitor.h"
#include "support/ManualClock.h"
#include "usage/UsageCache.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class PlanUsageMonitorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cache.emplace();
        m_clock = ManualClock();
    }
    void cleanup() { m_monitor.reset(); }

    void numbersThatAreOldAreShownWithANotice()
    {
        addAnswer(u"a_0"_s, 42, 30min);
        start();
        QCOMPARE(shown(), u"42");
        m_clock.advance(1ms);
        QCOMPARE(afterRefresh(), u"42, Updated 30 min ago — open Claude to refresh");
        m_clock.advance(1min);
        QCOMPARE(afterRefresh(), u"42, Updated 31 min ago — open Claude to refresh");
        addAnswer(u"a_0"_s, 43, 0min);
        QCOMPARE(afterRefresh(), u"43");
    }

    void numbersOutliveAFailure()
    {
        start();
        QCOMPARE(shown(), u"none, Open the Claude app to load plan usage");
        addAnswer(u"a_0"_s, 42, 0min);
        QCOMPARE(afterRefresh(), u"42"); // a failure leaves no entries to trust: the folder is listed again
        m_cache->add(u"a_0"_s, UsageCache::entry(UsageCache::usageKey(), "plain"), m_clock.now());
        QCOMPARE(afterRefresh(), u"42, Couldn't read Claude's usage cache");
        m_zstd.clear();
        QCOMPARE(afterRefresh(), u"42, Install zstd (brew install zstd) to read plan usage");
    }

    void theKnownEntriesAreTrustedForThreeMinutes()
    {
        addAnswer(u"a_0"_s, 10, 1min);
        start();
        addAnswer(u"b_0"_s, 20, 0min);
        QCOMPARE(afterRefresh(), u"10");
        m_clock.advance(179999ms);
        QCOMPARE(afterRefresh(), u"10");
        m_clock.advance(1ms);
        QCOMPARE(afterRefresh(), u"20");
        addAnswer(u"c_0"_s, 30, 0min);
        QCOMPARE(afterRefresh(), u"20");
        QCOMPARE(afterRefresh(true), u"30");
    }

    void aClockSetBackMakesNothingOldAndTrustsNothing()
    {
        addAnswer(u"a_0"_s, 10, 0min);
        start();
        addAnswer(u"b_0"_s, 20, -1min);
        m_clock.advance(-1h);
        QCOMPARE(afterRefresh(), u"20");
    }

    void itReadsByItselfEveryTenSeconds()
    {
        addAnswer(u"a_0"_s, 42, 1min);
        start();
        addAnswer(u"a_0"_s, 43, 0min);
        auto *timer = m_monitor->findChild<QTimer *>();
        QCOMPARE(timer->intervalAsDuration(), 10s);
        QVERIFY(timer->isActive());
        timer->setInterval(1ms);
        QTRY_COMPARE(shown(), u"43");
    }

    void aMonitorCanGoInTheMiddleOfARead()
    {
        addAnswer(u"a_0"_s, 42, 0min);
        m_zstd = m_cache->writeScript(u"zstd"_s, "#!/bin/sh\n: > \"${0%/*}/started\"\nexec sleep 60\n");
        m_monitor = monitor();
        QTRY_VERIFY(QFile::exists(m_cache->path(u"started"_s)));
        QElapsedTimer timer;
        timer.start();
        m_monitor.reset();
        QVERIFY(timer.elapsed() < 50'000); // waiting for the command would make it sixty seconds
        QCoreApplication::processEvents();
    }

private:
    void addAnswer(const QString &name, int percent, std::chrono::minutes age)
    {
        m_cache->add(name, UsageCache::usageEntry(percent), m_clock.now() - age);
    }
    std::unique_ptr<PlanUsageMonitor> monitor()
    {
        const auto find = [this] { return m_zstd.isEmpty() ? std::nullopt : std::optional(m_zstd); };
        return std::make_unique<PlanUsageMonitor>(
            PlanUsageReader(m_cache->folder(), PlanUsageMonitor::defaultDomain, find, {{}, 1ms}), m_clock);
    }
    void start()
    {
        m_zstd = u"/usr/bin/zstd"_s;
        m_monitor = monitor();
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

    std::optional<UsageCache> m_cache;
    ManualClock m_clock;
    QString m_zstd;
    std::unique_ptr<PlanUsageMonitor> m_monitor;
};

QTEST_GUILESS_MAIN(PlanUsageMonitorTest)
#include "tst_plan_usage_monitor.moc"
