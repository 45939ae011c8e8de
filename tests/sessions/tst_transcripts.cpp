#include <QTest>

#include "Sessions/SessionDetails.h"
#include "Sessions/Transcripts.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

#include <fcntl.h>
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
        m_transcripts = std::make_unique<Transcripts>(
            QStringList{m_home->path(u"projects"_s), m_home->path(u"second"_s)});
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

    void knowsByTheLastLineWhetherClaudeGoesOn()
    {
        const auto reply = [](const QByteArray &content, const QByteArray &reason) -> QByteArray {
            return R"({"type":"assistant","message":{"content":[)" + content + R"(],"stop_reason":)" + reason
                + "}}\n";
        };
        const QByteArray text = R"({"type":"text","text":"t"})";
        const QByteArray call = R"({"type":"tool_use","name":"Bash","input":{"command":"c"}})";
        const QByteArray ask =
            R"({"type":"tool_use","name":"AskUserQuestion","input":{"questions":[{"question":"Which?"}]}})";
        const QByteArray result = R"({"type":"user","message":{"content":[{"type":"tool_result"}]}})"
                                  "\n";
        const QByteArray aside = R"({"type":"assistant","isSidechain":true,"message":{"content":[]}})"
                                 "\n";
        const QByteArray answer = reply(text, R"("end_turn")");
        ClaudeSession driven = m_session;
        driven.entrypoint = u"sdk-cli"_s;
        driven.status = u"waiting"_s; // so that it is told what is asked
        for (const auto &[lines, seconds, question] :
             {std::tuple<QByteArray, int, QString>(typedLine("p"), 600, u""_s),
              {answer, 0, u""_s},
              {answer + titleLine("t") + promptLine("p") + aside, 0, u""_s},
              {answer + typedLine("p"), 600, u""_s},
              {typedLine("p") + reply(text, "null"), 5, u""_s},
              {reply(text, R"("tool_use")"), 600, u""_s},
              {reply(call, R"("tool_use")"), 600, u""_s},
              {reply(call, "null") + result, 600, u""_s},
              {result + typedLine("[Request interrupted by user for tool use]"), 0, u""_s},
              {typedLine("p") + reply(ask, "null"), 600, u"Which?"_s},
              {reply(ask, "null") + result, 600, u""_s},
              {result + QByteArray(400'000, 'x') + '\n' + titleLine("t") + promptLine("p"), 600, u""_s}}) {
            init();
            put(lines);
            const SessionDetail detail = m_transcripts->update({driven}, false, m_now).value(u"id"_s);
            QVERIFY2(detail.work && detail.work->until - detail.work->since == seconds * 1s, lines);
            QCOMPARE(detail.question.value_or(QString()), question);
            const SessionDetail own = m_transcripts->update({m_session}, false, m_now).value(u"id"_s);
            QVERIFY(!own.work && !own.question); // it tells by itself, and waits for nothing
        }
        put(answer);
        const QString path = m_home->path(u"projects/-tmp-my-app/id.jsonl"_s);
        const auto since = [&] {
            return m_transcripts->update({driven}, false, m_now).value(u"id"_s).work.value().since;
        };
        const std::array<timespec, 2> past{timespec{1, 0}, timespec{1, 0}};
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), past.data(), 0), 0);
        QCOMPARE(since(), TimePoint(1s));
        append(titleLine("told later"));
        QCOMPARE(since(), TimePoint(1s));
    }

    void whatComesInPiecesIsReadAsIfItWereWhole()
    {
        const QByteArray lines = R"({"type":"user","message":{"content":"typed"}}
{"type":"assistant","message":{"content":[{"type":"text","text":"t"}],"stop_reason":"end_turn"}}
{"type":"summary","summary":"s","leafUuid":"1"}
{"type":"system","subtype":"compact_boundary","content":"Conversation compacted"}
{"type":"user","isCompactSummary":true,"message":{"content":"This session is being continued"}}
{"type":"last-prompt","lastPrompt":"typed"}
{"type":"custom-title","customTitle":"renamed"}
{"type":"user","message":{"content":"typed later"}}
{"type":"ai-title","aiTitle":"generated"}
)";
        ClaudeSession driven = m_session;
        driven.entrypoint = u"sdk-cli"_s;
        const auto read = [&driven, this](Transcripts &transcripts) {
            SessionDetail detail = transcripts.update({driven}, false, m_now).value(u"id"_s);
            if (detail.work) // nothing but when the file was written
                detail.work = TranscribedWork{{}, TimePoint(detail.work->until - detail.work->since)};
            return detail;
        };
        for (const int step : {1, 7, 64, 200}) {
            init();
            put({});
            for (qsizetype from = 0; from < lines.size(); from += step) {
                append(lines.sliced(from, std::min<qsizetype>(step, lines.size() - from)));
                Transcripts fresh({m_home->path(u"projects"_s)});
                SessionDetail grown = read(*m_transcripts);
                SessionDetail whole = read(fresh);
                if (grown.work && whole.work)
                    grown.work->until = whole.work->until; // grows with what has no end of its own
                QCOMPARE(grown, whole);
            }
            QCOMPARE(update(), u"generated|typed later"_s);
        }
    }

    void readsOnlyTheEndOfALongTranscript()
    {
        QVERIFY(QFile::resize(put({}), 500'000'000));
        append("\n" + titleLine("t") + typedLine("p"));
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
        QVERIFY(m_transcripts->costs().listings <= 8); // of two folders

        const QString path = m_home->write(u"projects/elsewhere/id.jsonl"_s, titleLine("t"));
        int seconds = 0;
        for (; update() == u"|" && seconds < 5; ++seconds)
            m_now += 1s;
        QVERIFY(seconds < 5);

        QVERIFY(QFile::remove(path));
        QCOMPARE(update(), u"t|"_s); // as long as there is no other
        m_now -= 1h;                 // the clock is set back
        m_home->write(u"second/third/id.jsonl"_s, titleLine("moved"));
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
        SessionDetails details({m_home->path(u"projects"_s)}, m_clock);
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
        SessionDetails details({m_home->path(u"projects"_s)}, m_clock);
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
        session.entrypoint = u"cli"_s;
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
