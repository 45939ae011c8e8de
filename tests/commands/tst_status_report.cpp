#include <QJsonArray>
#include <QTest>

#include "Commands/StatusReport.h"
#include "support/PanelWorld.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

namespace {

QJsonObject sessionOf(const QString &title, const QString &lastPrompt)
{
    return {
        {u"word"_s, u"working"_s},
        {u"elapsed"_s, u"just now"_s},
        {u"title"_s, title},
        {u"lastPrompt"_s, lastPrompt}};
}

QJsonObject reportOf(const QJsonArray &sessions)
{
    return {{u"sessions"_s, sessions}};
}

const QDateTime now = QDateTime::fromSecsSinceEpoch(1'790'000'000);

} // namespace

class TestStatusReport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void sessionsAreReportedInTheCardsOrderWithEveryKey()
    {
        PanelWorld world;
        const TimePoint started = world.clock.now() - 24h;
        world.addSession(11, u"older"_s, u"waiting"_s, 2h);
        world.addSession(12, u"busy one"_s, u"busy"_s, 1s);
        world.addSession(
            13, QString(), u"idle"_s, 0ms, {{u"updatedAt"_s, QJsonValue()}, {u"cwd"_s, u"/a/b c"_s}});
        world.monitor.refresh();

        QJsonObject report;
        reportSessions(world.monitor, world.clock, report);
        QCOMPARE(report.keys(), QStringList({u"activity"_s, u"sessions"_s}));
        QCOMPARE(report[u"activity"_s].toString(), u"working"_s);
        const QJsonArray sessions = report[u"sessions"_s].toArray();
        QCOMPARE(sessions.size(), 3);
        QCOMPARE(
            sessions[0].toObject(),
            (QJsonObject{
                {u"sessionId"_s, u"session-12"_s},
                {u"pid"_s, 12},
                {u"cwd"_s, u"/home/ada/project"_s},
                {u"title"_s, u"busy one"_s},
                {u"lastPrompt"_s, QJsonValue()},
                {u"state"_s, u"working"_s},
                {u"word"_s, u"working"_s},
                {u"elapsed"_s, u"just now"_s},
                {u"startedAt"_s, PanelWorld::msecs(started)},
                {u"updatedAt"_s, PanelWorld::msecs(started + 24h - 1s)},
            }));
        QCOMPARE(sessions[1][u"word"_s].toString(), u"waiting"_s);
        QCOMPARE(sessions[1][u"state"_s].toString(), u"idle"_s);
        QCOMPARE(sessions[2][u"elapsed"_s].toString(), u"1d ago"_s);
        QVERIFY(sessions[2].toObject().value(u"updatedAt"_s).isNull());
    }

    void theUsageIsReportedAsFarAsItIsKnown()
    {
        PanelWorld world;
        QTRY_VERIFY(!world.planUsage.isRefreshing());
        QJsonObject report;
        reportUsage(world.planUsage, report);
        const QJsonObject usage = report[u"usage"_s].toObject();
        QCOMPARE(usage.keys(), QStringList({u"problem"_s, u"session"_s, u"weekly"_s}));
        QVERIFY(usage[u"session"_s].isNull() && usage[u"weekly"_s].isNull());
        QVERIFY(!usage[u"problem"_s].toString().isEmpty());

        const QJsonObject window{
            {u"fraction"_s, 0.42}, {u"resetsAt"_s, now.addSecs(3660).toUTC().toString(Qt::ISODate)}};
        const QJsonObject known{{u"session"_s, window}, {u"problem"_s, u"Old"_s}};
        QCOMPARE(
            statusTable({{u"usage"_s, known}}, 80, now),
            u"No sessions running\n\nCurrent session  42% Used   Resets in 1 hr 1 min\nOld\n"_s);
    }

    void theTableFitsItsWidthWhateverTheTexts()
    {
        const QJsonArray sessions{
            sessionOf(u"short"_s, QString()), sessionOf(QString(500, u't'), QString(100'000, u'p')),
            sessionOf(u"emoji"_s, u"🙂"_s.repeated(200)), sessionOf(QString(), u"x"_s)};
        for (const qsizetype width : {50, 51, 80, 100, 300}) {
            const QString table = statusTable(reportOf(sessions), width, now);
            const QStringList lines = table.chopped(1).split(u'\n');
            QCOMPARE(lines.size(), 5);
            for (const QString &line : lines) {
                QVERIFY2(line.size() <= width, qPrintable(line));
                QVERIFY(!line.endsWith(u' '));
                QVERIFY2(line.isValidUtf16(), "a character is cut in two");
            }
        }
    }

    void theTablePrintsNothingThatATerminalObeys()
    {
        const QString evil = u"a\x1b[31mb\nc\rd\te\u0085f\u009bg"_s;
        const QString table = statusTable(reportOf({sessionOf(evil, evil)}), 200, now);
        QCOMPARE(table.count(u'\n'), 2);
        QVERIFY(table.contains(u"a[31mbcdefg"_s));
        for (const QChar each : table)
            QVERIFY(each == u'\n' || each.category() != QChar::Other_Control);
    }

    void anAnswerOfAnotherShapeIsNoSessions()
    {
        QCOMPARE(statusTable({}, 80, now), u"No sessions running\n"_s);
        QCOMPARE(statusTable({{u"sessions"_s, 3}}, 80, now), u"No sessions running\n"_s);
        QVERIFY(!statusTable(reportOf({1, QJsonArray(), QJsonValue()}), 80, now).isEmpty());
    }
};

QTEST_MAIN(TestStatusReport)
#include "tst_status_report.moc"
