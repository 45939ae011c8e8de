#include <QTest>

#include <limits>

#include "Usage/CacheEntry.h"
#include "Usage/UsageJson.h"
#include "Usage/UsageTexts.h"
#include "usage/UsageCache.h"

using namespace nubble;
using namespace Qt::StringLiterals;

namespace {

QByteArray printed(const std::optional<PlanWindow> &window)
{
    if (!window)
        return "none";
    const QString date = window->resetsAt ? window->resetsAt->toString(Qt::ISODateWithMs) : u"undated"_s;
    return QByteArray::number(window->fraction) + ' ' + date.toUtf8();
}

} // namespace

class UsageParsingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aUsageKeyIsOneOfAnOrganisationsUsage_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<bool>("usage");
        const auto row = [](const char *path, bool usage) {
            QTest::newRow(path) << UsageCache::keyFor(path) << usage;
        };
        row("/api/organizations/abc/usage", true);
        row("/api/organizations/abc/usage?window=all", true);
        row("/api/organizations/abc/usage#top", true);
        row("/api/organizations//abc//usage/", true);
        row("/api/organizations/abc/usage/daily", false);
        row("/api/organizations/usage", false);
        row("/api/organizations/?abc/usage", false);
        row("/api/organizations/abc/Usage", false);
        row("/api/organizations/x/api/organizations/abc/usage", false);
        row("/api/bootstrap/abc/usage", false);
        QTest::newRow("elsewhere") << QByteArray("https://example.org/api/organizations/abc/usage") << false;
    }
    void aUsageKeyIsOneOfAnOrganisationsUsage()
    {
        QFETCH(QByteArray, key);
        QTEST(CacheEntry::isUsageKey(key, "claude.ai"), "usage");
    }

    void anEntryCutAnywhereGivesAnAnswerOrNone()
    {
        const QByteArray key = UsageCache::usageKey();
        const QByteArray body = UsageCache::compressed("{}");
        const QByteArray whole = UsageCache::entry(key, body);
        for (qsizetype length = 0; length <= whole.size(); ++length) {
            const QByteArray cut = whole.first(length);
            QCOMPARE(CacheEntry::keyOf(cut).has_value(), length >= 24 + key.size());
            QCOMPARE(CacheEntry::compressedBodyOf(cut).has_value(), length >= 24 + key.size() + 4);
        }
        QCOMPARE(CacheEntry::keyOf(whole)->toByteArray(), key);
        QVERIFY(CacheEntry::compressedBodyOf(whole)->startsWith(body));
    }

    void aFalseEntryHasNoKeyOrNoBody()
    {
        QByteArray entry = UsageCache::entry("key", "plain");
        QVERIFY(CacheEntry::keyOf(entry));
        QVERIFY(!CacheEntry::compressedBodyOf(entry));
        QVERIFY(!CacheEntry::keyOf(UsageCache::entry("", UsageCache::compressed("{}"))));
        QVERIFY(!CacheEntry::keyOf(UsageCache::entry("\xff\xfe", "")));
        for (const quint32 length : {0xffff'ffffu, 0x8000'0000u, 0x7fff'ffffu, 0xffff'ffe8u}) {
            qToLittleEndian(length, entry.data() + 12);
            QVERIFY(!CacheEntry::keyOf(entry));
        }
    }

    void windowsAreReadInBothShapes_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QByteArray>("session");
        QTest::addColumn<QByteArray>("weekly");
        const auto row = [](const char *name, const char *json, const char *session, const char *weekly) {
            QTest::newRow(name) << QByteArray(json) << QByteArray(session) << QByteArray(weekly);
        };
        row("limits",
            R"({"limits":[{"kind":"session","percent":42,"resets_at":"2026-09-21T10:00:00.123456+00:00"},)"
            R"({"kind":"weekly_all","percent":7.5,"resets_at":"2026-09-21T10:00:00+02:00"},)"
            R"({"kind":"weekly_other","percent":99}]})",
            "0.42 2026-09-21T10:00:00.123Z", "0.075 2026-09-21T08:00:00.000Z");
        row("windows", R"({"five_hour":{"utilization":150,"resets_at":null},"seven_day":{"utilization":0}})",
            "1.5 undated", "0 undated");
        row("limits go first, window by window",
            R"({"limits":[{"kind":"session","percent":1}],"five_hour":{"utilization":2},"seven_day":{"utilization":3}})",
            "0.01 undated", "0.03 undated");
        row("an element without a number",
            R"({"limits":[{"kind":"session","percent":"42"}],"five_hour":{"utilization":2}})", "0.02 undated",
            "none");
        row("dates that are none",
            R"({"five_hour":{"utilization":1,"resets_at":"2026-09-21T10:00:00"},"seven_day":{"utilization":1,"resets_at":5}})",
            "0.01 undated", "0.01 undated");
        row("any type anywhere",
            R"({"limits":[null,1,"x",[],{"kind":{},"percent":1},{"kind":"session","percent":true}],)"
            R"("five_hour":[1],"seven_day":{"utilization":-3}})",
            "none", "-0.03 undated");
    }
    void windowsAreReadInBothShapes()
    {
        QFETCH(QByteArray, json);
        const auto windows = parseUsageJson(json);
        QVERIFY(windows);
        QTEST(printed(windows->session), "session");
        QTEST(printed(windows->weekly), "weekly");
    }

    void whatIsNoUsageAnswerGivesNothing_data()
    {
        QTest::addColumn<QByteArray>("json");
        for (const char *json :
             {"", "{", "[]", "null", "{}", R"({"limits":{"kind":"session","percent":1}})",
              R"({"limits":[{"kind":"session"}],"five_hour":null})", R"({"five_hour":{"utilization":1e999}})",
              R"({"five_hour":{"utilization":"50"}})", R"([{"five_hour":{"utilization":1}}])"})
            QTest::newRow(json) << QByteArray(json);
        QTest::newRow("nested without end") << QByteArray(1'000'000, '[');
    }
    void whatIsNoUsageAnswerGivesNothing()
    {
        QFETCH(QByteArray, json);
        QVERIFY(!parseUsageJson(json));
    }

    void aFractionIsShownAsAWholePercentageAndAColour_data()
    {
        QTest::addColumn<double>("fraction");
        QTest::addColumn<QString>("text");
        QTest::addColumn<UsageLevel>("level");
        QTest::newRow("less than nothing") << -0.2 << u"0% Used"_s << UsageLevel::Ample;
        QTest::newRow("29") << 29 / 100.0 << u"29% Used"_s << UsageLevel::Ample;
        QTest::newRow("49") << 49 / 100.0 << u"49% Used"_s << UsageLevel::Ample;
        QTest::newRow("50") << 50 / 100.0 << u"50% Used"_s << UsageLevel::Watch;
        QTest::newRow("70") << 70 / 100.0 << u"70% Used"_s << UsageLevel::Critical;
        QTest::newRow("150") << 1.5 << u"100% Used"_s << UsageLevel::Critical;
        QTest::newRow("huge") << 1e300 << u"100% Used"_s << UsageLevel::Critical;
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << u"0% Used"_s
                                   << UsageLevel::Ample;
    }
    void aFractionIsShownAsAWholePercentageAndAColour()
    {
        QFETCH(double, fraction);
        QTEST(percentText(fraction), "text");
        QTEST(levelOf(fraction), "level");
    }

    void aResetIsToldByItsDistance()
    {
        const QDateTime now(QDate(2026, 9, 21), QTime(9, 5)); // a Monday
        const auto textIn = [&now](qint64 seconds) { return resetText(now.addSecs(seconds), now); };
        QCOMPARE(textIn(-90), u"Resets in 0 min");
        QCOMPARE(textIn(59), u"Resets in 0 min");
        QCOMPARE(textIn(59 * 60 + 59), u"Resets in 59 min");
        QCOMPARE(textIn(60 * 60), u"Resets in 1 hr 0 min");
        QCOMPARE(textIn(1440 * 60 - 1), u"Resets in 23 hr 59 min");
        QCOMPARE(textIn(1440 * 60), u"Resets Tue 9:05 AM");
        QCOMPARE(resetText(now.addSecs(28 * 3600).toUTC(), now), u"Resets Tue 1:05 PM");
        QCOMPARE(resetText(std::nullopt, now), QString());
    }
};

QTEST_GUILESS_MAIN(UsageParsingTest)
#include "tst_usage_parsing.moc"
