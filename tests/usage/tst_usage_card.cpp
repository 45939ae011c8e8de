#include <QAbstractButton>
#include <QLabel>
#include <QTest>

#include "Usage/LimitRow.h"
#include "Usage/PlanUsageMonitor.h"
#include "Usage/UsageCardContent.h"
#include "support/FakeDesktopPreferences.h"
#include "support/ManualClock.h"
#include "usage/UsageCache.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

namespace {

// The card over a cache that a test fills.
struct UsageCardUnderTest {
    explicit UsageCardUnderTest(const UsageCache &cache)
        : planUsage(cache.home(), clock, PlanUsageMonitor::defaultDomain), card(planUsage, clock, preferences)
    {
        card.show();
    }

    [[nodiscard]] QStringList rows() const
    {
        QStringList names;
        for (const auto *row : card.findChildren<LimitRow *>())
            names.append(row->accessibleName());
        return names;
    }

    [[nodiscard]] QString problem() const
    {
        const auto *label = card.findChild<QLabel *>();
        return label->isVisible() ? label->text() : QString();
    }

    ManualClock clock;
    FakeDesktopPreferences preferences;
    PlanUsageMonitor planUsage;
    UsageCardContent card;
};

void addEntry(const UsageCache &cache, const ManualClock &clock, const QByteArray &json)
{
    cache.add(u"a_0"_s, UsageCache::entry(UsageCache::usageKey(), UsageCache::compressed(json)), clock.now());
}

} // namespace

class TestUsageCard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theRowsSayHowMuchIsUsedAndWhenItStartsAnew()
    {
        const UsageCache cache;
        const ManualClock clock;
        const QDateTime reset =
            QDateTime::fromMSecsSinceEpoch((clock.now() + 59min).time_since_epoch().count());
        addEntry(
            cache, clock,
            R"({"five_hour":{"utilization":42,"resets_at":")" + reset.toUTC().toString(Qt::ISODate).toUtf8()
                + R"("},"seven_day":{"utilization":150}})");
        UsageCardUnderTest usage(cache);
        QTRY_COMPARE(
            usage.rows(),
            QStringList({u"Current session, 42% Used, Resets in 59 min"_s, u"All models, 100% Used"_s}));
        QCOMPARE(usage.problem(), QString());
        usage.clock.advance(1min);
        QTRY_COMPARE(usage.rows().first(), u"Current session, 42% Used, Resets in 58 min"_s);
    }

    void theButtonReadsAtOnceWhatWasNotKnown()
    {
        const UsageCache cache;
        UsageCardUnderTest usage(cache);
        QTRY_COMPARE(usage.problem(), u"Open the Claude app to load plan usage"_s);
        QCOMPARE(usage.rows(), QStringList({u"Current session, not known"_s, u"All models, not known"_s}));
        QTRY_VERIFY(!usage.planUsage.isRefreshing());
        addEntry(cache, usage.clock, R"({"seven_day":{"utilization":7}})");
        auto *button = usage.card.findChild<QAbstractButton *>();
        QCOMPARE(button->accessibleName(), u"Refresh now"_s);
        button->click();
        QVERIFY(usage.planUsage.isRefreshing());
        QTRY_COMPARE(usage.rows().last(), u"All models, 7% Used"_s);
    }
};

QTEST_MAIN(TestUsageCard)
#include "tst_usage_card.moc"
