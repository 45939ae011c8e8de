#include <QTest>

#include "Sessions/SessionParsing.h"
#include "Sessions/SessionTexts.h"
#include "sessions/SessionFixtures.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class SessionRecordTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void keepsAllNineFieldsOfWhichFiveMayBeAbsentOrNull()
    {
        const auto session =
            decodeSession(R"({"pid":7,"sessionId":"a","cwd":"/p","startedAt":1.5,"name":"n","status":"busy",
            "updatedAt":2500,"entrypoint":"cli","nameSource":"user","kind":{"unknown":[]}})");
        const ClaudeSession expected{7, u"a"_s, u"/p"_s, 1.5, u"n"_s, u"busy"_s, 2500.0, u"cli"_s, u"user"_s};
        QCOMPARE(session, std::optional(expected));
        QCOMPARE(session->lastActivity(), 2500.0);

        const QByteArray required = R"({"pid":7,"sessionId":"a","cwd":"/p","startedAt":1000)";
        const auto bare = decodeSession(required + '}');
        QVERIFY(bare && !bare->status);
        QCOMPARE(bare->lastActivity(), 1000.0);
        const QByteArray nulls = R"(,"name":null,"status":null,"updatedAt":null,"entrypoint":null})";
        QCOMPARE(decodeSession(required + nulls), bare);
    }

    void rejectsWhatIsNoRecord()
    {
        for (const QByteArray wrong :
             {R"("pid":7.5)", R"("pid":"7")", R"("pid":2147483648)", R"("pid":1e999)", R"("pid":7,"name":[])",
              R"("pid":7,"updatedAt":"1")", "\"pid\":7,\"name\":\"no UTF-8 \xff\""})
            QVERIFY2(!decodeSession(R"({"sessionId":"a","startedAt":1,"cwd":"/",)" + wrong + '}'), wrong);
        QVERIFY(!decodeSession({}));
        QVERIFY(!decodeSession(R"({"pid":7,"sessionId":"without cwd","startedAt":1})"));
        QVERIFY(!decodeSession(recordJson(7, u"a"_s, u"idle"_s) + "y\"}")); // the old end behind new text
    }

    void aRowHasANameAndASymbol()
    {
        for (const auto &[keys, title, expected] :
             {std::tuple(R"("cwd":"/p/q","name":"Name","nameSource":"user")", "Title", u"Name"_s),
              {R"("cwd":"/p/q","name":"Name","nameSource":"derived")", "Title", u"Title"_s},
              {R"("cwd":"/p/q","name":"Name")", "Title", u"Title"_s},
              {R"("cwd":"/p/q","name":"Name","nameSource":"derived")", nullptr, u"Name"_s},
              {R"("cwd":"/p/q r/","name":"","nameSource":"user")", nullptr, u"q r"_s},
              {R"("cwd":"/")", nullptr, u"/"_s}}) {
            auto session =
                decodeSession(R"({"pid":7,"sessionId":"a","startedAt":1,)" + QByteArray(keys) + '}');
            const auto known = title ? std::optional(QString::fromUtf8(title)) : std::nullopt;
            QCOMPARE(rowTitle(*session, {known, std::nullopt}), expected);
            QCOMPARE(rowSymbol(*session), u"terminal"_s);
            session->entrypoint = u"claude-desktop"_s;
            QCOMPARE(rowSymbol(*session), u"macwindow"_s);
        }
    }

    void saysHowLongAgo()
    {
        constexpr double now = 1'790'000'000'000;
        for (const auto &[seconds, text] :
             {std::pair(-1e300, u"just now"_s),
              {59.999, u"just now"_s},
              {60.0, u"1m ago"_s},
              {3599.0, u"59m ago"_s},
              {3600.0, u"1h ago"_s},
              {86399.0, u"23h ago"_s},
              {86400.0, u"1d ago"_s},
              {1e300, u"11594791d ago"_s}, // as far as it is believed
              {qQNaN(), u"just now"_s}})
            QCOMPARE(elapsedText(timePointOf(now - seconds * 1000), timePointOf(now)), text);
    }
};

QTEST_GUILESS_MAIN(SessionRecordTest)
#include "tst_session_record.moc"
