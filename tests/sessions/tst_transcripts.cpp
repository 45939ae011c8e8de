#include <QTest>

#include "Sessions/SessionDetails.h"
#include "Sessions/Transcripts.h"
#include "sessions/SessionFixtures.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

class TranscriptTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<TemporaryHome>();
        m_transcripts = std::make_unique<Transcripts>(m_home->path(u"projects"_s));
        m_now = TimePoint(1000s);
    }

    void takesTheNewestUsableLines()
    {
        using Row = std::tuple<QByteArray, QString, QString>;
        const QByteArray wrongType = R"({"type":"ai-title","aiTitle":7})";
        for (const auto &[lines, title, prompt] :
             {Row(titleLine("old") + lastPromptLine("p") + titleLine("new"), u"new"_s, u"p"_s),
              Row(titleLine("old") + titleLine(R"( \n\t)") + wrongType + '\n', u"old"_s, QString()),
              Row(titleLine("no UTF-8: caf\xe9"), u"no UTF-8: café"_s, QString()),
              Row(typedLine("stands in") + titleLine("t"), u"t"_s, u"stands in"_s),
              Row(lastPromptLine("wins") + typedLine("typed"), QString(), u"wins"_s)}) {
            init(); // or it would be the same transcript, grown
            put(lines);
            const SessionDetail detail = update();
            QCOMPARE(detail.title.value_or(QString()), title);
            QCOMPARE(detail.lastPrompt.value_or(QString()), prompt);
        }
    }

    void knowsWhatTheUserTyped()
    {
        const auto user = [](const QByteArray &content, const QByteArray &more = {}) -> QByteArray {
            return R"({"type":"user","message":{"role":"user","content":)" + content + "}" + more + "}";
        };
        for (const auto &[line, prompt] :
             {std::pair(user(R"(" fix\nit ")"), u"fix it"_s),
              {user(R"([{"type":"image"},{"type":"text","text":"see"}])"), u"see"_s},
              {user('"' + QByteArray(199, 'x') + "😀\""), QString(199, u'x')}, // no half of a character
              {user(R"("x")", R"(,"isMeta":true)"), QString()},
              {user(R"("x")", R"(,"isSidechain":true)"), QString()},
              {user(R"("x")", R"(,"isCompactSummary":true)"), QString()},
              {user(R"("x")", R"(,"toolUseResult":{})"), QString()},
              {user(R"([{"type":"tool_result","content":"x"},{"type":"text","text":"x"}])"), QString()},
              {user(R"("<command-name>/clear</command-name>")"), QString()},
              {user(R"([{"type":"text","text":"[Request interrupted by user]"}])"), QString()},
              {R"({"type":"x","m":{"type":"user"},"message":{"content":"x"}})", QString()}})
            QVERIFY2(typedPrompt(line).value_or(QString()) == prompt, line);
    }

    void readsOnlyTheEndOfALongTranscript()
    {
        const QString path = put({});
        QVERIFY(QFile::resize(path, 500'000'000));
        append(path, "\n" + titleLine("t") + lastPromptLine("p"));
        QCOMPARE(update(), (SessionDetail{u"t"_s, u"p"_s}));
        QCOMPARE(m_transcripts->costs().bytes, 256 * 1024);
    }

    void readsFurtherBackForWhatIsMissing()
    {
        const QByteArray filler = QByteArray(1023, 'x') + '\n';
        put(titleLine("too far") + filler.repeated(9 * 1024));
        QCOMPARE(update(), SessionDetail());
        // Nothing twice but the line that each shorter tail cut.
        QCOMPARE(m_transcripts->costs().bytes, 8 * 1024 * 1024 + 2 * filler.size());

        put(lastPromptLine("old") + titleLine("t") + filler.repeated(1024) + lastPromptLine("p")
            + "unfinished");
        QCOMPARE(update(), (SessionDetail{u"t"_s, u"p"_s}));
    }

    void readsOnlyWhatWasAppendedAndWaitsForTheLineBreak()
    {
        const QByteArray line = titleLine("new");
        const QString path = put(titleLine("a longer old title") + typedLine("typed") + line.chopped(1));
        QCOMPARE(update(), (SessionDetail{u"a longer old title"_s, u"typed"_s}));
        const qint64 before = m_transcripts->costs().bytes;
        const QByteArray more = '\n' + lastPromptLine("p") + typedLine("typed later");
        append(path, more + line.first(20));
        QCOMPARE(update(), (SessionDetail{u"new"_s, u"p"_s}));
        append(path, titleLine("newest").sliced(20));
        QCOMPARE(update(), (SessionDetail{u"newest"_s, u"p"_s}));
        // Nothing twice but the lines that were cut.
        QCOMPARE(
            m_transcripts->costs().bytes - before,
            line.size() - 1 + more.size() + 20 + titleLine("newest").size());

        put(titleLine("short")); // and starts again
        QCOMPARE(update(), (SessionDetail{u"short"_s, std::nullopt}));
    }

    void takesOneLookAtAnUnchangedTranscript()
    {
        put(titleLine("t"));
        update();
        FileCosts expected = m_transcripts->costs();
        for (int second = 0; second < 10; ++second) {
            m_now += 1s;
            ++expected.attributeReads;
            QCOMPARE(update(), (SessionDetail{u"t"_s, std::nullopt}));
        }
        QCOMPARE(m_transcripts->costs(), expected);
    }

    void findsATranscriptInAnotherFolderWithinSeconds()
    {
        m_home->write(u"projects/elsewhere/other.jsonl"_s, {});
        for (int second = 0; second < 10; ++second, m_now += 1s)
            QCOMPARE(update(), SessionDetail());
        QVERIFY(m_transcripts->costs().listings <= 4);

        const QString path = m_home->write(u"projects/elsewhere/id.jsonl"_s, titleLine("t"));
        const TimePoint appeared = m_now;
        while (!update().title && m_now < appeared + 10s)
            m_now += 1s;
        QVERIFY(m_now - appeared < 5s);

        QVERIFY(QFile::remove(path));
        QCOMPARE(update().title, u"t"_s); // as long as there is no other
        m_now -= 1h;                      // the clock is set back
        m_home->write(u"projects/third/id.jsonl"_s, titleLine("moved"));
        QCOMPARE(update().title, u"moved"_s);
    }

    void staysWithinTheProjectsFolder()
    {
        put(titleLine("t"));
        for (const QString &reachable : {u"secret.jsonl"_s, u"projects/secret.jsonl"_s, u"projects/.jsonl"_s})
            m_home->write(reachable, titleLine("secret"));
        m_home->write(u"projects/-tmp-my-app/secret.jsonl"_s, titleLine("secret"));
        for (const QString &id :
             {u"../../secret"_s, u"../secret"_s, u"a/../../../secret"_s, u""_s, u"."_s, u".."_s,
              u"secret.jsonl\0"_s, QString(5000, u'x')})
            QCOMPARE(
                m_transcripts->update({sessionOf(id), sessionOf(id + u"/")}, false, m_now),
                (QHash<QString, SessionDetail>()));
    }

    void survivesWhatIsNoTranscript()
    {
        QVERIFY(QDir().mkpath(m_home->path(u"projects/-tmp-my-app"_s)));
        const QByteArray path = QFile::encodeName(m_home->path(u"projects/-tmp-my-app/id.jsonl"_s));
        QCOMPARE(::mkfifo(path, 0600), 0);
        QCOMPARE(update(), SessionDetail());
        QVERIFY(QFile::remove(QFile::decodeName(path)));

        put(QByteArray("\0\xff{[\"type\":", 12).repeated(30'000) + "\n" + titleLine(QByteArray(100'000, 'x'))
            + R"({"type":"ai-title",)" + QByteArray(5000, '[') + "\n");
        QCOMPARE(update().title, QString(4096, u'x'));
    }

    void readsInTheBackgroundWhatItIsWaitedFor()
    {
        put(titleLine("t"));
        SessionDetails details(m_home->path(u"projects"_s), m_clock);
        for (int i = 0; i < 100; ++i)
            details.update({m_session, sessionOf(u"without transcript"_s)}, i % 2 == 0);
        details.waitForDone();
        QCOMPARE(details.byId(), (QHash<QString, SessionDetail>{{u"id"_s, {u"t"_s, std::nullopt}}}));
        details.update({}, false); // the sessions are gone
        details.waitForDone();
        QCOMPARE(details.byId().size(), 0);
    }

    void aLookAtAllIsNotLostToANewerUpdateWhileItWaits()
    {
        QList<ClaudeSession> many;
        for (int i = 0; i < 3000; ++i)
            many.append(sessionOf(QString::number(i)));
        SessionDetails details(m_home->path(u"projects"_s), m_clock);
        details.update({m_session}, false);
        details.waitForDone();
        m_home->write(u"projects/other/id.jsonl"_s, titleLine("t")); // not to be looked for again so soon
        details.update(many, false);
        details.update({m_session}, true);
        details.update({m_session}, false);
        details.waitForDone();
        QCOMPARE(details.byId().value(u"id"_s).title, u"t"_s);
    }

    void goesAwayWhileItIsReading()
    {
        QList<ClaudeSession> sessions;
        for (int i = 0; i < 200; ++i) {
            sessions.append(sessionOf(QString::number(i)));
            m_home->write(u"projects/-tmp-my-app/%1.jsonl"_s.arg(i), typedLine("x").repeated(5000));
        }
        for (int round = 0; round < 10; ++round) {
            SessionDetails details(m_home->path(u"projects"_s), m_clock);
            details.update(sessions, false);
            details.update(sessions, true);
        }
        QCoreApplication::processEvents();
    }

    void keepsTheTextWholeWhereTheEndBeginsWithinACharacter()
    {
        const QByteArray end = "\n" + titleLine("café") + lastPromptLine("p");
        // The tail begins with the second byte of the last "é".
        put(QByteArray("é").repeated(1000) + QByteArray(256 * 1024 - 1 - end.size(), 'x') + end);
        QCOMPARE(update(), (SessionDetail{u"café"_s, u"p"_s}));
    }

private:
    SessionDetail update() { return m_transcripts->update({m_session}, false, m_now).value(u"id"_s); }
    QString put(const QByteArray &bytes) const
    {
        return m_home->write(u"projects/-tmp-my-app/id.jsonl"_s, bytes);
    }

    const ClaudeSession m_session = sessionOf(u"id"_s);
    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<Transcripts> m_transcripts;
    TimePoint m_now;
    const ManualClock m_clock{};
};

QTEST_GUILESS_MAIN(TranscriptTest)
#include "tst_transcripts.moc"
