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

class TestUsageCard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_cache.emplace(); }
    void cleanup() { m_card.reset(); }

    void theRowsSayHowMuchIsUsedAndWhenItStartsAnew()
    {
        const auto reset = QDateTime::fromMSecsSinceEpoch((m_clock.now() + 59min).time_since_epoch().count());
        addAnswer(
            R"({"five_hour":{"utilization":42,"resets_at":")" + reset.toUTC().toString(Qt::ISODate).toUtf8()
            + R"("},"seven_day":{"utilization":150}})");
        open();
        QTRY_COMPARE(shown(), u"Current session, 42% Used, Resets in 59 min; All models, 100% Used"_s);
        m_clock.advance(1min);
        QTRY_COMPARE(shown(), u"Current session, 42% Used, Resets in 58 min; All models, 100% Used"_s);
    }

    void theButtonReadsAtOnceWhatWasNotKnown()
    {
        open();
        QTRY_COMPARE(
            shown(),
            u"Current session, not known; All models, not known; Open the Claude app to load plan usage"_s);
        QTRY_VERIFY(!m_usage->isRefreshing());
        addAnswer(R"({"seven_day":{"utilization":7}})");
        auto *button = m_card->findChild<QAbstractButton *>();
        QCOMPARE(button->accessibleName(), u"Refresh now"_s);
        button->click();
        QVERIFY(m_usage->isRefreshing());
        QTRY_COMPARE(shown(), u"Current session, not known; All models, 7% Used"_s);
    }

private:
    void addAnswer(const QByteArray &json) const
    {
        const QByteArray body = UsageCache::compressed(json);
        m_cache->add(u"a_0"_s, UsageCache::entry(UsageCache::usageKey(), body), m_clock.now());
    }
    void open()
    {
        m_usage.emplace(m_cache->home(), m_clock, PlanUsageMonitor::defaultDomain);
        m_card.emplace(*m_usage, m_clock, m_preferences);
        m_card->show();
    }
    // The rows, and the problem if there is one.
    QString shown() const
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
    FakeDesktopPreferences m_preferences;
    std::optional<PlanUsageMonitor> m_usage;
    std::optional<UsageCardContent> m_card;
};

QTEST_MAIN(TestUsageCard)
#include "tst_usage_card.moc"
