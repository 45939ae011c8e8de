#include <QTest>

#include "Sessions/Transcripts.h"
#include "sessions/SessionFixtures.h"
#include "support/TemporaryHome.h"

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace nubble;

class TranscriptTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<TemporaryHome>();
        m_transcripts = std::make_unique<Transcripts>(m_home->path(u"projects"_s));
        m_now = 1'000'000;
    }

    void takesTheNewestUsableLines_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("prompt");
        QTest::newRow("newest of several")
            << titleLine("old") + lastPromptLine("p") + titleLine("new") << u"new"_s << u"p"_s;
        QTest::newRow("only white space")
            << titleLine("old") + titleLine(R"( \n\t)") << u"old"_s << QString();
        QTest::newRow("wrong types") << titleLine("old")
                + R"({"type":"ai-title","aiTitle":7})"
                  "\n" << u"old"_s << QString();
        QTest::newRow("no UTF-8") << titleLine("caf\xe9") << u"café"_s << QString();
        QTest::newRow("typed prompt stands in")
            << typedLine("typed") + titleLine("t") << u"t"_s << u"typed"_s;
        QTest::newRow("last prompt wins")
            << lastPromptLine("last") + typedLine("typed") << QString() << u"last"_s;
    }

    void takesTheNewestUsableLines()
    {
        QFETCH(QByteArray, lines);
        put(lines);
        const SessionDetail detail = update();
        QTEST(detail.title.value_or(QString()), "title");
        QTEST(detail.lastPrompt.value_or(QString()), "prompt");
    }

    void knowsWhatTheUserTyped_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("prompt");
        const auto user = [](const QByteArray &content, const QByteArray &more = {}) -> QByteArray {
            return R"({"type":"user","message":{"role":"user","content":)" + content + "}" + more + "}";
        };
        QTest::newRow("text") << user(R"(" fix\nit ")") << u"fix it"_s;
        QTest::newRow("text part after another")
            << user(R"([{"type":"image"},{"type":"text","text":"see"}])") << u"see"_s;
        QTest::newRow("pair at the cut") << user('"' + QByteArray(199, 'x') + "😀\"") << QString(199, u'x');
        QTest::newRow("meta") << user(R"("x")", R"(,"isMeta":true)") << QString();
        QTest::newRow("side chain") << user(R"("x")", R"(,"isSidechain":true)") << QString();
        QTest::newRow("tool result") << user(R"([{"type":"tool_result","content":"x"}])") << QString();
        QTest::newRow("command") << user(R"("<command-name>/clear</command-name>")") << QString();
        QTest::newRow("interruption")
            << user(R"([{"type":"text","text":"[Request interrupted by user]"}])") << QString();
        QTest::newRow("another type")
            << QByteArray(R"({"type":"x","m":{"type":"user"},"message":{"content":"x"}})") << QString();
    }

    void knowsWhatTheUserTyped()
    {
        QFETCH(QByteArray, line);
        QTEST(typedPrompt(line).value_or(QString()), "prompt");
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

    void readsOnlyWhatWasAppended()
    {
        const QString path = put(titleLine("t") + typedLine("typed"));
        update();
        const qint64 before = m_transcripts->costs().bytes;
        const QByteArray more = lastPromptLine("p") + typedLine("typed later");
        append(path, more);
        QCOMPARE(update(), (SessionDetail{u"t"_s, u"p"_s}));
        QCOMPARE(m_transcripts->costs().bytes - before, more.size());
    }

    void waitsForTheLineBreak()
    {
        const QByteArray line = titleLine("new");
        const QString path = put(titleLine("old") + line.chopped(1));
        QCOMPARE(update().title, u"old"_s);
        append(path, "\n" + line.first(20));
        QCOMPARE(update().title, u"new"_s);
        append(path, titleLine("newest").sliced(20));
        QCOMPARE(update().title, u"newest"_s);
    }

    void startsAgainWithAShorterFile()
    {
        put(titleLine("a much longer title than the next") + lastPromptLine("p"));
        update();
        put(titleLine("short"));
        QCOMPARE(update(), (SessionDetail{u"short"_s, std::nullopt}));
    }

    void takesOneLookAtAnUnchangedTranscript()
    {
        put(titleLine("t"));
        update();
        FileCosts expected = m_transcripts->costs();
        for (int second = 0; second < 10; ++second) {
            m_now += 1000;
            ++expected.attributeReads;
            QCOMPARE(update(), (SessionDetail{u"t"_s, std::nullopt}));
        }
        QCOMPARE(m_transcripts->costs(), expected);
    }

    void findsATranscriptInAnotherFolderWithinSeconds()
    {
        m_home->write(u"projects/elsewhere/other.jsonl"_s, {});
        for (int second = 0; second < 10; ++second, m_now += 1000)
            QCOMPARE(update(), SessionDetail());
        QVERIFY(m_transcripts->costs().listings <= 4);

        const QString path = m_home->write(u"projects/elsewhere/id.jsonl"_s, titleLine("t"));
        const qint64 appeared = m_now;
        while (!update().title && m_now < appeared + 10'000)
            m_now += 1000;
        QVERIFY(m_now - appeared < 5000);

        QVERIFY(QFile::remove(path));
        put(titleLine("moved"));
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

        QByteArray garbage(300'000, '\0');
        for (qsizetype i = 0; i < garbage.size(); ++i)
            garbage[i] = static_cast<char>(i * i * 31 + i / 7);
        put(garbage + "\n" + titleLine(QByteArray(100'000, 'x')) + R"({"type":"ai-title",)"
            + QByteArray(5000, '[') + "\n");
        QCOMPARE(update().title, QString(4096, u'x'));
    }

    void keepsTheTextWholeWhereTheEndBeginsWithinACharacter()
    {
        const QByteArray end = "\n" + titleLine("café") + lastPromptLine("p");
        // The tail begins with the second byte of the last "é".
        put(QByteArray("é").repeated(1000) + QByteArray(256 * 1024 - 1 - end.size(), 'x') + end);
        QCOMPARE(update(), (SessionDetail{u"café"_s, u"p"_s}));
    }

private:
    SessionDetail update(bool force = false)
    {
        return m_transcripts->update({m_session}, force, m_now).value(u"id"_s);
    }
    QString put(const QByteArray &bytes) const
    {
        return m_home->write(u"projects/-tmp-my-app/id.jsonl"_s, bytes);
    }

    const ClaudeSession m_session = sessionOf(u"id"_s);
    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<Transcripts> m_transcripts;
    qint64 m_now = 0;
};

QTEST_GUILESS_MAIN(TranscriptTest)
#include "tst_transcripts.moc"
