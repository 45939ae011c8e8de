#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

#include "Commands/StatusLine.h"
#include "Commands/StatusNews.h"
#include "Commands/StatusReport.h"
#include "Shell/OneLine.h"
#include "support/PanelWorld.h"
#include "usage/UsageCache.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

namespace {

QJsonObject sessionOf(const QString &title, const QString &lastPrompt)
{
    return {{u"word"_s, u"working"_s}, {u"title"_s, title}, {u"lastPrompt"_s, lastPrompt}};
}

QString tableOf(const QJsonValue &sessions, qsizetype width = 80)
{
    return statusTable({{u"sessions"_s, sessions}}, width, QDateTime());
}

} // namespace

class TestStatusReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sessionsAreReportedInTheCardsOrderWithEveryKey()
    {
        PanelWorld world;
        const TimePoint started = world.clock.now() - 24h;
        world.addSession(11, u"older"_s, u"waiting"_s, 2h, {{u"waitingFor"_s, u"permission prompt"_s}});
        world.addSession(12, u"busy one"_s, u"busy"_s, 1s);
        world.addSession(
            13, QString(), u"idle"_s, 0ms, {{u"updatedAt"_s, QJsonValue()}, {u"cwd"_s, u"/a/b c"_s}});
        world.readSessions();

        QJsonObject report;
        reportSessions(world.monitor, world.clock, report);
        QCOMPARE(report[u"activity"_s].toString(), u"working"_s);
        const QJsonArray sessions = report[u"sessions"_s].toArray();
        QCOMPARE(
            QString::fromUtf8(QJsonDocument(sessions[0].toObject()).toJson(QJsonDocument::Compact)),
            QString(u"{\"cwd\":\"/home/ada/project\",\"elapsed\":\"just now\",\"lastPrompt\":null,\"pid\":12,"
                    "\"question\":null,\"sessionId\":\"session-12\",\"startedAt\":%1,\"state\":\"working\","
                    "\"terminal\":null,\"title\":\"busy one\",\"updatedAt\":%2,\"waitingSince\":null,"
                    "\"word\":\"working\"}"_s)
                .arg(PanelWorld::msecs(started))
                .arg(PanelWorld::msecs(started + 24h - 1s)));
        QCOMPARE(sessions[1][u"word"_s].toString(), u"waiting"_s);
        QCOMPARE(sessions[1][u"state"_s].toString(), u"waiting"_s);
        QCOMPARE(sessions[1][u"question"_s].toString(), u"permission prompt"_s);
        QCOMPARE(sessions[1][u"waitingSince"_s].toInteger(), PanelWorld::msecs(started + 22h));
        QCOMPARE(sessions[2][u"elapsed"_s].toString(), u"1d ago"_s);
        QVERIFY(sessions[2][u"updatedAt"_s].isNull());
    }

    void theUsageIsReportedAsFarAsItIsKnown()
    {
        PanelWorld world;
        const auto usage = [&world] {
            QJsonObject report;
            reportUsage(world.planUsage, report);
            return report[u"usage"_s].toObject();
        };
        QTRY_VERIFY(usage()[u"problem"_s].isString());
        QVERIFY(usage()[u"session"_s].isNull() && usage()[u"weekly"_s].isNull());
        world.home.write(
            u".config/Claude/Cache/Cache_Data/a_0"_s,
            UsageCache::entry(UsageCache::usageKey(), UsageCache::compressed(R"({
                "five_hour":{"utilization":50},
                "seven_day":{"utilization":75.5,"resets_at":"2026-10-01T12:00:00+02:00"}})")));
        world.planUsage.refresh(true);
        const QJsonObject session{{u"fraction"_s, 0.5}, {u"percent"_s, 50}, {u"resetsAt"_s, QJsonValue()}};
        const QJsonObject weekly{
            {u"fraction"_s, 0.755}, {u"percent"_s, 75}, {u"resetsAt"_s, u"2026-10-01T10:00:00Z"_s}};
        QTRY_COMPARE(
            usage(),
            (QJsonObject{{u"session"_s, session}, {u"weekly"_s, weekly}, {u"problem"_s, QJsonValue()}}));

        const QJsonObject known{{u"weekly"_s, weekly}, {u"problem"_s, u"Old"_s}};
        QCOMPARE(
            statusTable(
                {{u"usage"_s, known}}, 80, QDateTime::fromString(u"2026-10-01T08:59:00Z"_s, Qt::ISODate)),
            u"No sessions running\n\nAll models       75% Used   Resets in 1 hr 1 min\nOld\n"_s);
    }

    void theTableFitsItsWidthWhateverTheTextsAndHoldsNothingThatATerminalObeys()
    {
        const QString evil = u"a\x1b[31mb\nc\r\te\u0085f\u009bg\u202e\u2028\u2066"_s;
        const QJsonArray sessions{
            sessionOf(evil, evil), sessionOf(QString(500, u't'), QString(100'000, u'p')),
            sessionOf(u"emoji"_s, u"🙂"_s.repeated(200)), sessionOf(QString(), u"x"_s)};
        for (const qsizetype width : {50, 51, 80, 100, 300}) {
            const QStringList lines = tableOf(sessions, width).chopped(1).split(u'\n');
            QCOMPARE(lines.size(), 5);
            QVERIFY(lines[1].contains(u"a [31mb c e f g  "_s));
            for (const QString &line : lines) {
                QVERIFY2(line.size() <= width, qPrintable(line));
                QVERIFY(!line.endsWith(u' '));
                QVERIFY2(line.isValidUtf16(), "a character is cut in two");
                for (const QChar each : line)
                    QVERIFY(each.category() != QChar::Other_Control && !isDirectionChange(each));
            }
        }
        const QByteArray json = statusJson({{u"cwd"_s, evil}});
        QCOMPARE(QJsonDocument::fromJson(json)[u"cwd"_s].toString(), evil); // a path stays what it is
        for (const auto *escaped : {"\\u001b[31mb\\n", "e\\u0085f\\u009bg\\u202e\\u2028\\u2066\""})
            QVERIFY2(json.contains(escaped), json);
    }

    void aStatusBarIsToldHowManyDoWhatAndWhatIsUsed()
    {
        const auto session = [](const QString &word, const QString &title) {
            return QJsonObject{{u"word"_s, word}, {u"title"_s, title}};
        };
        QJsonObject report{
            {u"activity"_s, u"completed"_s},
            {u"sessions"_s,
             QJsonArray{
                 session(u"idle"_s, u"a"_s), session(u"done"_s, u"b\nc"_s), session(u"idle"_s, u"d"_s)}}};
        QCOMPARE(statusLine(report), u"1 done, 2 idle"_s);
        report[u"usage"_s] = QJsonObject{{u"session"_s, QJsonObject{{u"percent"_s, 29}}}};
        report = forStatusBars(report);
        QCOMPARE(report[u"text"_s].toString(), u"1 done, 2 idle · 29%"_s);
        QCOMPARE(report[u"tooltip"_s].toString(), u"a: idle\nb c: done\nd: idle"_s);
        QCOMPARE(report[u"class"_s].toString(), u"completed"_s);
        QCOMPARE(report[u"percentage"_s].toInt(), 29);
        QCOMPARE(statusLine({}), u"no sessions"_s);
    }

    void whoeverFollowsIsToldOfChangesOnlyAndNotOfAges()
    {
        QString word = u"idle"_s, elapsed = u"1m ago"_s;
        int reads = 0;
        const auto status = [&] {
            ++reads;
            const QJsonObject session{{u"word"_s, word}, {u"elapsed"_s, elapsed}};
            return QJsonObject{{u"sessions"_s, QJsonArray{session}}};
        };
        StatusNews news;
        const QSignalSpy changes(&news, &StatusNews::changed);
        const auto considered = [&](int times) {
            const int before = reads;
            for (int i = 0; i < times; ++i)
                news.consider(status);
            return QTest::qWaitFor([&] { return reads > before; }, 2000) && reads == before + 1;
        };
        news.consider(status);
        news.begin(status());
        elapsed = u"2m ago"_s;
        QVERIFY(considered(3));
        QCOMPARE(changes.count(), 0);
        word = u"working"_s;
        news.begin(status()); // one who comes later hides nothing from the others
        QVERIFY(considered(3));
        QCOMPARE(changes.count(), 1);
        QCOMPARE(reads, 4);
    }

    void anAnswerOfAnotherShapeIsNoSessions()
    {
        for (const QJsonValue &sessions : {QJsonValue(QJsonValue::Undefined), QJsonValue(3)})
            QCOMPARE(tableOf(sessions), u"No sessions running\n"_s);
        QCOMPARE(tableOf(QJsonArray{1, QJsonArray(), QJsonValue()}).count(u'\n'), 4);
    }
};

QTEST_MAIN(TestStatusReport)
#include "tst_status_report.moc"
