#include <QTest>

#include "Sessions/SessionParsing.h"
#include "Sessions/SessionTexts.h"
#include "sessions/SessionFixtures.h"

using namespace Qt::StringLiterals;

namespace nubble {

class SessionRecordTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsAllNineFields();
    void takesAbsentAndNullForTheSame();
    void rejectsWhatIsNoRecord_data();
    void rejectsWhatIsNoRecord();
    void namesARow_data();
    void namesARow();
    void saysWhatASessionDoes();
    void saysHowLongAgo_data();
    void saysHowLongAgo();
};

void SessionRecordTest::keepsAllNineFields()
{
    const auto session =
        decodeSession(R"({"pid":7,"sessionId":"a","cwd":"/p","startedAt":1.5,"name":"n","status":"busy",
        "updatedAt":2500,"entrypoint":"cli","nameSource":"user","kind":{"unknown":[]}})");
    const ClaudeSession expected{7, u"a"_s, u"/p"_s, 1.5, u"n"_s, u"busy"_s, 2500.0, u"cli"_s, u"user"_s};
    QCOMPARE(session, std::optional(expected));
    QCOMPARE(session->lastActivity(), 2.5);
}

void SessionRecordTest::takesAbsentAndNullForTheSame()
{
    const auto bare = decodeSession(R"({"pid":7,"sessionId":"a","cwd":"/p","startedAt":1000})");
    const auto nulls =
        decodeSession(R"({"pid":7,"sessionId":"a","cwd":"/p","startedAt":1000,"name":null,"status":null,
        "updatedAt":null,"entrypoint":null,"nameSource":null})");
    QVERIFY(bare && !bare->status);
    QCOMPARE(nulls, bare);
    QCOMPARE(bare->lastActivity(), 1.0);
}

void SessionRecordTest::rejectsWhatIsNoRecord_data()
{
    QTest::addColumn<QByteArray>("json");
    const auto with = [](const QByteArray &pid, const QByteArray &rest) -> QByteArray {
        return "{\"pid\":" + pid + ",\"sessionId\":\"a\",\"startedAt\":1" + rest + "}";
    };
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("list") << QByteArray("[]");
    QTest::newRow("without cwd") << with("7", "");
    QTest::newRow("null cwd") << with("7", ",\"cwd\":null");
    QTest::newRow("old end behind new text") << with("7", ",\"cwd\":\"/p\"") + "y\"}";
    QTest::newRow("invalid UTF-8") << with("7", ",\"cwd\":\"/p\xff\"");
    for (const char *pid : {"7.5", "\"7\"", "true", "2147483648", "-2147483649", "1e300", "1e999"})
        QTest::newRow(pid) << with(pid, ",\"cwd\":\"/p\"");
    for (const char *key : {"name", "status", "entrypoint", "nameSource"})
        QTest::newRow(key) << with("7", ",\"cwd\":\"/p\",\"" + QByteArray(key) + "\":1");
    QTest::newRow("updatedAt") << with("7", R"(,"cwd":"/p","updatedAt":"1")");
    QTest::newRow("endless updatedAt") << with("7", R"(,"cwd":"/p","updatedAt":1e999)");
}

void SessionRecordTest::rejectsWhatIsNoRecord()
{
    QFETCH(QByteArray, json);
    QVERIFY(!decodeSession(json));
}

void SessionRecordTest::namesARow_data()
{
    using Text = std::optional<QString>;
    QTest::addColumn<Text>("name");
    QTest::addColumn<Text>("source");
    QTest::addColumn<Text>("transcript");
    QTest::addColumn<QString>("cwd");
    QTest::addColumn<QString>("title");
    const Text none, name = u"Name"_s, user = u"user"_s, derived = u"derived"_s, transcript = u"Transcript"_s;
    QTest::newRow("given name") << name << user << transcript << u"/p/q"_s << u"Name"_s;
    QTest::newRow("derived name, transcript")
        << name << derived << transcript << u"/p/q"_s << u"Transcript"_s;
    QTest::newRow("derived name alone") << name << derived << none << u"/p/q"_s << u"Name"_s;
    QTest::newRow("name of no source, transcript")
        << name << none << transcript << u"/p/q"_s << u"Transcript"_s;
    QTest::newRow("name of no source alone") << name << none << none << u"/p/q"_s << u"Name"_s;
    QTest::newRow("empty name, transcript")
        << Text(u""_s) << user << transcript << u"/p/q"_s << u"Transcript"_s;
    QTest::newRow("nothing but a folder") << none << none << none << u"/p/q r/"_s << u"q r"_s;
    QTest::newRow("root folder") << none << none << none << u"/"_s << u"/"_s;
}

void SessionRecordTest::namesARow()
{
    QFETCH(std::optional<QString>, name);
    QFETCH(std::optional<QString>, source);
    QFETCH(std::optional<QString>, transcript);
    QFETCH(QString, cwd);
    ClaudeSession session = sessionOf(u"a"_s, cwd);
    session.name = name;
    session.nameSource = source;
    QTEST(rowTitle(session, {transcript, std::nullopt}), "title");
}

void SessionRecordTest::saysWhatASessionDoes()
{
    ClaudeSession session;
    QCOMPARE(rowWord(session, RunState::Working), u"working"_s);
    QCOMPARE(rowWord(session, RunState::Completed), u"done"_s);
    QCOMPARE(rowWord(session, RunState::Idle), u"idle"_s);
    QCOMPARE(stateName(RunState::Completed), u"completed"_s);
    QCOMPARE(rowSymbol(session), u"terminal"_s);
    session.status = u"waiting"_s;
    session.entrypoint = u"claude-desktop"_s;
    QCOMPARE(rowWord(session, RunState::Completed), u"waiting"_s);
    QCOMPARE(rowSymbol(session), u"macwindow"_s);
}

void SessionRecordTest::saysHowLongAgo_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("in the future") << -1e300 << u"just now"_s;
    QTest::newRow("59 s") << 59.999 << u"just now"_s;
    QTest::newRow("60 s") << 60.0 << u"1m ago"_s;
    QTest::newRow("almost an hour") << 3599.0 << u"59m ago"_s;
    QTest::newRow("an hour") << 3600.0 << u"1h ago"_s;
    QTest::newRow("almost a day") << 86399.0 << u"23h ago"_s;
    QTest::newRow("a day") << 86400.0 << u"1d ago"_s;
    QTest::newRow("out of range") << 1e300 << u"11574074d ago"_s;
}

void SessionRecordTest::saysHowLongAgo()
{
    QFETCH(double, seconds);
    const qint64 now = 1'790'000'000'000;
    QTEST(elapsedText(static_cast<double>(now) - seconds * 1000, now), "text");
}

} // namespace nubble

QTEST_GUILESS_MAIN(nubble::SessionRecordTest)
#include "tst_session_record.moc"
