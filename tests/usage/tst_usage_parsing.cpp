#include <QTest>

#include "Usage/CacheEntry.h"
#include "Usage/UsageJson.h"
#include "Usage/UsageTexts.h"
#include "usage/UsageCache.h"

using namespace nubble;
using namespace Qt::StringLiterals;

class UsageParsingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aUsageKeyIsOneOfAnOrganisationsUsage()
    {
        using Row = std::pair<const char *, bool>;
        for (const auto &[path, usage] :
             {Row("/api/organizations/abc/usage", true), Row("/api/organizations/abc/usage?window=all", true),
              Row("/api/organizations//abc//usage/", true), Row("/api/organizations/abc/usage/daily", false),
              Row("/api/organizations/x/api/organizations/abc/usage", false),
              Row("/api/bootstrap/abc/usage", false)})
            QVERIFY2(CacheEntry::isUsageKey(UsageCache::keyFor(path), "claude.ai") == usage, path);
        QVERIFY(!CacheEntry::isUsageKey(UsageCache::usageKey(), "example.org"));
    }

    void anEntryCutAnywhereOrFalseGivesAnAnswerOrNone()
    {
        const QByteArray key = UsageCache::usageKey();
        const QByteArray whole = UsageCache::entry(key, UsageCache::compressed("{}"));
        for (qsizetype length = 0; length <= whole.size(); ++length) {
            const QByteArray cut = whole.first(length);
            QCOMPARE(CacheEntry::keyOf(cut).has_value(), length >= 24 + key.size());
            QCOMPARE(CacheEntry::compressedBodyOf(cut).has_value(), length >= 24 + key.size() + 4);
        }
        QCOMPARE(CacheEntry::keyOf(whole)->toByteArray(), key);
        QVERIFY(CacheEntry::compressedBodyOf(whole)->startsWith(UsageCache::compressed("{}")));

        QByteArray entry = UsageCache::entry("key", "plain");
        QVERIFY(CacheEntry::keyOf(entry) && !CacheEntry::compressedBodyOf(entry));
        QVERIFY(!CacheEntry::keyOf(UsageCache::entry("", UsageCache::compressed("{}"))));
        QVERIFY(!CacheEntry::keyOf(UsageCache::entry("\xff\xfe", "")));
        for (const quint32 length : {0xffff'ffffu, 0x8000'0000u, 0x7fff'ffffu, 0xffff'ffe8u}) {
            qToLittleEndian(length, entry.data() + 12);
            QVERIFY(!CacheEntry::keyOf(entry));
        }
    }

    void windowsAreReadInBothShapes()
    {
        using Row = std::array<const char *, 3>;
        for (const auto &[json, session, weekly] :
             {Row{R"({"limits":[{"kind":"session","percent":42,)"
                  R"("resets_at":"2026-09-21T10:00:00.123456+00:00"},{"kind":"weekly_all","percent":7.5,)"
                  R"("resets_at":"2026-09-21T10:00:00+02:00"},{"kind":"weekly_other","percent":99}]})",
                  "0.42 2026-09-21T10:00:00.123Z", "0.075 2026-09-21T08:00:00.000Z"},
              Row{R"({"five_hour":{"utilization":150,"resets_at":null},)"
                  R"("seven_day":{"utilization":0,"resets_at":"2026-09-21T10:00:00"}})",
                  "1.5 undated", "0 undated"},
              // Limits go first, window by window.
              Row{R"({"limits":[{"kind":"session","percent":1}],"five_hour":{"utilization":2},)"
                  R"("seven_day":{"utilization":3}})",
                  "0.01 undated", "0.03 undated"},
              Row{R"({"limits":[null,1,[],{"kind":{},"percent":1},{"kind":"session","percent":true}],)"
                  R"("five_hour":{"utilization":2},"seven_day":{"utilization":-3,"resets_at":5}})",
                  "0.02 undated", "-0.03 undated"},
              Row{R"({"limits":[{"kind":"weekly_all","percent":1}],"five_hour":[1]})", "none",
                  "0.01 undated"}}) {
            const auto windows = parseUsageJson(json);
            QVERIFY2(windows, json);
            QCOMPARE(printed(windows->session), session);
            QCOMPARE(printed(windows->weekly), weekly);
        }
    }

    void whatIsNoUsageAnswerGivesNothing()
    {
        for (const char *json :
             {"", "{", "[]", "{}", R"({"limits":{"kind":"session","percent":1}})",
              R"({"limits":[{"kind":"session"}],"five_hour":null})", R"({"five_hour":{"utilization":1e999}})",
              R"({"five_hour":{"utilization":"50"}})"})
            QVERIFY2(!parseUsageJson(json), json);
        QVERIFY(!parseUsageJson(QByteArray(1'000'000, '['))); // nested without end
    }

    void aFractionIsShownAsAWholePercentageAndAColour()
    {
        using Row = std::tuple<double, QString, UsageLevel>;
        for (const auto &[percent, text, level] :
             {Row(-20, u"0% Used"_s, UsageLevel::Ample), Row(29, u"29% Used"_s, UsageLevel::Ample),
              Row(49.99, u"49% Used"_s, UsageLevel::Ample), Row(50, u"50% Used"_s, UsageLevel::Watch),
              Row(57, u"57% Used"_s, UsageLevel::Watch), Row(69.5, u"69% Used"_s, UsageLevel::Watch),
              Row(70, u"70% Used"_s, UsageLevel::Critical), Row(99.5, u"99% Used"_s, UsageLevel::Critical),
              Row(1e300, u"100% Used"_s, UsageLevel::Critical)}) {
            const int shown = percentOf(percent / 100);
            QCOMPARE(percentText(shown), text);
            QCOMPARE(levelOf(shown), level);
        }
    }

    void aResetIsToldByItsDistance()
    {
        const QDateTime now(QDate(2026, 9, 21), QTime(9, 5)); // a Monday
        using Row = std::pair<int, QString>;
        for (const auto &[seconds, text] :
             {Row(-90, u"Resets in 0 min"_s), Row(59 * 60 + 59, u"Resets in 59 min"_s),
              Row(60 * 60, u"Resets in 1 hr 0 min"_s), Row(1440 * 60 - 1, u"Resets in 23 hr 59 min"_s),
              Row(1440 * 60, u"Resets Tue 9:05 AM"_s), Row(28 * 3600, u"Resets Tue 1:05 PM"_s)})
            QCOMPARE(resetText(now.addSecs(seconds).toUTC(), now), text);
    }

private:
    static QByteArray printed(const std::optional<PlanWindow> &window)
    {
        if (!window)
            return "none";
        const QString date = window->resetsAt ? window->resetsAt->toString(Qt::ISODateWithMs) : u"undated"_s;
        return QByteArray::number(window->fraction) + ' ' + date.toUtf8();
    }
};

QTEST_GUILESS_MAIN(UsageParsingTest)
#include "tst_usage_parsing.moc"
