#include <QTest>

#include "Sessions/SessionDetails.h"
#include "Sessions/Transcripts.h"
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
        const QByteArray wrongType = R"({"type":"ai-title","aiTitle":7})";
        for (const auto &[lines, shown] :
             {std::pair<QByteArray, QString>(
                  promptLine("p") + titleLine("old") + titleLine("new"), u"new|p"_s),
              {titleLine("old") + titleLine(R"( \n\t)") + wrongType + '\n', u"old|"_s},
              {titleLine("no UTF-8: caf\xe9"), u"no UTF-8: café|"_s},
              {titleLine(R"(a\u202eb\u2028\u2067c)") + promptLine(R"(\u200fp\t p\u2069)"), u"ab c|p p"_s},
              {typedLine("stands in") + titleLine("t"), u"t|stands in"_s},
              {promptLine("old") + typedLine("typed after it"), u"|typed after it"_s},
              {typedLine("old") + promptLine("noted after it"), u"|noted after it"_s},
              {titleLine("generated") + line("custom-title", "customTitle", "renamed"), u"renamed|"_s},
              {line("custom-title", "customTitle", "renamed") + titleLine("newer"), u"newer|"_s}}) {
            init(); // or it would be the same transcript, grown
            put(lines);
            QCOMPARE(update(), shown);
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
              {user(R"([{"type":"tool_result","content":"x"},{"type":"text","text":"x"}])"), QString()},
              {user(R"([{"type":"text","text":"[Request interrupted by user]"}])"), QString()},
              {R"({"type":"x","m":{"type":"user"},"message":{"content":"x"}})", QString()}})
            QVERIFY2(typedPrompt(line).value_or(QString()) == prompt, line);
        for (const auto *key : {"isMeta", "isSidechain", "isCompactSummary", "toolUseResult"})
            QVERIFY2(!typedPrompt(user(R"("x")", QByteArray(",\"") + key + "\":true")), key);
        for (const auto *wrapper :
             {"command-name", "local-command-stdout", "bash-input", "task-notification", "system-reminder",
              "ide_selection"})
            QVERIFY2(!typedPrompt(user(QByteArray("\" <") + wrapper + ">x\"")), wrapper);
    }

    void readsOnlyTheEndOfALongTranscript()
    {
        QVERIFY(QFile::resize(put({}), 500'000'000));
        append("\n" + titleLine("t") + promptLine("p"));
        QCOMPARE(update(), u"t|p"_s);
        QCOMPARE(m_transcripts->costs().bytes, 256 * 1024);
    }

    void readsFurtherBackForWhatIsMissing()
    {
        const QByteArray filler = QByteArray(1023, 'x') + '\n';
        put(titleLine("too far") + filler.repeated(9 * 1024));
        QCOMPARE(update(), u"|"_s);
        // Nothing twice but the line that each shorter tail cut.
        QCOMPARE(m_transcripts->costs().bytes, 8 * 1024 * 1024 + 2 * filler.size());

        put(promptLine("old") + titleLine("t") + filler.repeated(1024) + promptLine("p") + "unfinished");
        QCOMPARE(update(), u"t|p"_s);
    }

    void readsOnlyWhatWasAppendedAndWaitsForTheLineBreak()
    {
        const QByteArray line = titleLine("new");
        put(titleLine("a longer old title") + typedLine("typed") + line.chopped(1));
        QCOMPARE(update(), u"a longer old title|typed"_s);
        const qint64 before = m_transcripts->costs().bytes;
        const QByteArray more = '\n' + promptLine("p") + typedLine("typed later");
        append(more + line.first(20));
        QCOMPARE(update(), u"new|typed later"_s);
        append(titleLine("newest").sliced(20));
        QCOMPARE(update(), u"newest|typed later"_s);
        // Nothing twice but the lines that were cut.
        const qint64 expected = line.size() - 1 + more.size() + 20 + titleLine("newest").size();
        QCOMPARE(m_transcripts->costs().bytes - before, expected);

        put(titleLine("short")); // and starts again
        QCOMPARE(update(), u"short|"_s);
    }

    void takesOneLookAtAnUnchangedTranscript()
    {
        put(titleLine("t"));
        update();
        FileCosts expected = m_transcripts->costs();
        expected.attributeReads += 10;
        for (int second = 0; second < 10; ++second, m_now += 1s)
            QCOMPARE(update(), u"t|"_s);
        QCOMPARE(m_transcripts->costs(), expected);
    }

    void findsATranscriptInAnotherFolderWithinSeconds()
    {
        m_home->write(u"projects/elsewhere/other.jsonl"_s, {});
        for (int second = 0; second < 10; ++second, m_now += 1s)
            QCOMPARE(update(), u"|"_s);
        QVERIFY(m_transcripts->costs().listings <= 4);

        const QString path = m_home->write(u"projects/elsewhere/id.jsonl"_s, titleLine("t"));
        int seconds = 0;
        for (; update() == u"|" && seconds < 5; ++seconds)
            m_now += 1s;
        QVERIFY(seconds < 5);

        QVERIFY(QFile::remove(path));
        QCOMPARE(update(), u"t|"_s); // as long as there is no other
        m_now -= 1h;                 // the clock is set back
        m_home->write(u"projects/third/id.jsonl"_s, titleLine("moved"));
        QCOMPARE(update(), u"moved|"_s);
    }

    void staysWithinTheProjectsFolder()
    {
        put(titleLine("t"));
        for (const QString &reachable :
             {u"secret"_s, u"projects/secret"_s, u"projects/"_s, u"projects/-tmp-my-app/secret"_s})
            m_home->write(reachable + u".jsonl", titleLine("secret"));
        for (const QString &id :
             {u"../../secret"_s, u"../secret"_s, u"a/../../../secret"_s, u""_s, u"."_s, u".."_s,
              u"secret.jsonl\0"_s, QString(5000, u'x')})
            QVERIFY(m_transcripts->update({sessionOf(id), sessionOf(id + u"/")}, false, m_now).isEmpty());
    }

    void survivesWhatIsNoTranscript()
    {
        const QString path = put({});
        QVERIFY(QFile::remove(path));
        QCOMPARE(::mkfifo(QFile::encodeName(path), 0600), 0);
        QCOMPARE(update(), u"|"_s);
        QVERIFY(QFile::remove(path));

        put(QByteArray("\0\xff{[\"type\":", 12).repeated(30'000) + "\n" + titleLine(QByteArray(100'000, 'x'))
            + R"({"type":"ai-title",)" + QByteArray(5000, '[') + "\n");
        QCOMPARE(update(), QString(4096, u'x') + u'|');
    }

    void readsInTheBackgroundWhatItIsWaitedFor()
    {
        put(typedLine("x").repeated(100'000) + titleLine("t"));
        SessionDetails details(m_home->path(u"projects"_s), m_clock);
        for (int i = 0; i < 100; ++i)
            details.update({m_session, sessionOf(u"without transcript"_s)}, i % 2 == 0);
        details.waitForDone();
        QCOMPARE(details.byId(), (QHash<QString, SessionDetail>{{u"id"_s, {u"t"_s, u"x"_s}}}));
        details.update({}, false); // the sessions are gone
        details.waitForDone();
        QCOMPARE(details.byId().size(), 0);
        details.update({m_session}, true); // and so is this, while it reads
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

private:
    static QByteArray line(const char *type, const char *key, const QByteArray &text)
    {
        return QByteArray("{\"type\":\"") + type + "\",\"" + key + "\":\"" + text + "\"}\n";
    }
    static QByteArray titleLine(const QByteArray &text) { return line("ai-title", "aiTitle", text); }
    static QByteArray promptLine(const QByteArray &text) { return line("last-prompt", "lastPrompt", text); }
    static QByteArray typedLine(const QByteArray &text)
    {
        return "{\"type\":\"user\",\"message\":{\"content\":\"" + text + "\"}}\n";
    }
    static ClaudeSession sessionOf(const QString &id)
    {
        ClaudeSession session;
        session.sessionId = id;
        session.cwd = u"/tmp/my.app"_s;
        return session;
    }
    // "title|prompt"
    QString update()
    {
        const SessionDetail detail = m_transcripts->update({m_session}, false, m_now).value(u"id"_s);
        return detail.title.value_or(u""_s) + u'|' + detail.lastPrompt.value_or(u""_s);
    }
    QString put(const QByteArray &bytes) const
    {
        return m_home->write(u"projects/-tmp-my-app/id.jsonl"_s, bytes);
    }
    void append(const QByteArray &bytes) const
    {
        QFile file(m_home->path(u"projects/-tmp-my-app/id.jsonl"_s));
        QVERIFY(file.open(QIODevice::Append) && file.write(bytes) == bytes.size());
    }

    const ClaudeSession m_session = sessionOf(u"id"_s);
    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<Transcripts> m_transcripts;
    TimePoint m_now;
    const ManualClock m_clock{};
};

QTEST_GUILESS_MAIN(TranscriptTest)
#include "tst_transcripts.moc"
