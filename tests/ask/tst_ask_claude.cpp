#include <QSignalSpy>
#include <QTest>

#include <csignal>

#include "Ask/AskClaude.h"
#include "Shell/Tools.h"
#include "ask/ClaudeStandIn.h"
#include "ask/PrintedConversation.h"

using namespace nubble;
using namespace Qt::StringLiterals;

namespace {

ScreenContext screen(const QByteArray &jpeg, const QString &app, const QString &title)
{
    ScreenContext context{
        .thumbnail = QImage(1, 1, QImage::Format_RGB32), .appName = app, .windowTitle = title};
    if (!jpeg.isEmpty())
        context.jpeg = jpeg;
    return context;
}

} // namespace

class AskClaudeTest : public QObject {
    Q_OBJECT

private:
    void ask(const QString &text)
    {
        m_ask->send(text);
        QTRY_VERIFY_WITH_TIMEOUT(!m_ask->isBusy(), 60000);
    }
    // What a reply to one question comes to when `claude` follows that script.
    QString resultOf(const QByteArray &script)
    {
        m_claude->follow(script);
        ask(u"q"_s);
        return printed(*m_ask);
    }
    [[nodiscard]] QStringList argumentsOf(qsizetype start) const
    {
        return m_claude->starts().value(start)["arguments"_L1].toVariant().toStringList();
    }
    void awaitItsEnd() const
    {
        QTRY_VERIFY(::kill(m_claude->starts().last()["pid"_L1].toInt(), 0) != 0);
        QCoreApplication::processEvents();
    }

    std::optional<TemporaryHome> m_home;
    std::optional<ClaudeStandIn> m_claude;
    std::optional<AskClaude> m_ask;

private Q_SLOTS:
    void init()
    {
        m_ask.reset();
        m_home.emplace();
        m_claude.emplace(*m_home);
        m_ask.emplace(m_home->home());
    }

    void oneProcessServesTheWholeConversation()
    {
        qputenv("OURS", "1");
        m_claude->follow(
            "while True:\n"
            " turn()\n"
            " say({'type': 'system', 'session_id': 'first'}, delta('Hel'), delta('lo'),"
            " {'type': 'rate_limit_event', 'session_id': 'second'}, reply('Hello', id='m'), done())\n");
        QSignalSpy grown(&*m_ask, &AskClaude::replyGrew);
        ask(u"  one \n"_s);
        m_ask->setAttachment(screen("\xff\xd8", u"Editor"_s, u"a.txt"_s));
        ask(u"two"_s);
        QCOMPARE(printed(*m_ask), u"Q: one|A: Hello|Q: two|A: Hello"_s);
        QCOMPARE(grown.size(), 4);
        QCOMPARE(m_ask->messages().at(2).context, u"Editor — a.txt"_s);
        QVERIFY(!m_ask->messages().at(2).thumbnail.isNull());
        QVERIFY(!m_ask->attachment());

        QCOMPARE(m_claude->starts().size(), 1);
        const QJsonObject start = m_claude->starts().first();
        QCOMPARE(start["folder"_L1].toString(), AskClaude::workingDirectory(m_home->home()));
        QCOMPARE(
            start["environment"_L1].toVariant().toStringList(),
            QStringList({Tools::searchPath(m_home->home()), u"1"_s, u"1"_s}));
        const QStringList arguments = argumentsOf(0);
        QCOMPARE(
            arguments.first(15).join(u' '),
            u"-p --input-format stream-json --output-format stream-json --verbose --include-partial-messages "
            "--model sonnet --tools  --strict-mcp-config --setting-sources  --append-system-prompt"_s);
        QVERIFY(arguments.at(15).startsWith(
            u"You are Claude, opened from a small panel at the edge of the user's Linux"_s));
        QCOMPARE(arguments.size(), 16);
        const QJsonArray content = m_claude->turns().at(1)["message"_L1]["content"_L1].toArray();
        QCOMPARE(content.size(), 2);
        QCOMPARE(content[0]["source"_L1]["data"_L1], u"/9g="_s);
        QCOMPARE(content[1]["text"_L1], u"[On screen: Editor — a.txt]\n\ntwo"_s);
    }

    void whatIsOnTheScreenStandsBeforeTheQuestion()
    {
        for (const auto &[context, blocks] :
             {std::pair(
                  screen({}, u"App"_s, {}),
                  QByteArray(R"({"text":"[On screen: App (no screenshot available)]\n\nq","type":"text"})")),
              {screen("x", {}, {}),
               R"({"source":{"data":"eA==","media_type":"image/jpeg","type":"base64"},"type":"image"},)"
               R"({"text":"q","type":"text"})"},
              {ScreenContext(), R"({"text":"q","type":"text"})"}})
            QCOMPARE(
                ClaudeProtocol::turn(u"q"_s, context),
                R"({"message":{"content":[)" + blocks
                    + R"(],"role":"user"},"type":"user"})"
                      "\n");
    }

    void eventsAreTakenAsTheyCome()
    {
        const auto row = [this](const QString &what, const QByteArray &script, const QString &result) {
            init();
            QCOMPARE(what + resultOf("turn()\n" + script), what + u"Q: q"_s + result);
        };
        row(u"whole replies replace deltas"_s, "say(delta('x'), reply('a', 'b'), done())", u"|A: a\n\nb"_s);
        row(u"the last whole reply counts"_s, "say(reply('a'), reply(), reply('c'), done())", u"|A: c"_s);
        row(u"split anywhere"_s,
            "for byte in json.dumps(delta('ä€😀'), ensure_ascii=False).encode() + b'\\n':\n"
            "  raw(bytes([byte])); time.sleep(0.001)\nsay(done())",
            u"|A: ä€😀"_s);
        row(u"other deltas and blocks are skipped"_s,
            "say({'type': 'stream_event', 'event': {'type': 'x', 'delta': delta('no')['event']['delta']}},"
            "{'type': 'stream_event', 'event': {'type': 'content_block_delta', 'delta': {'text': 'no'}}},"
            "delta('a'), {'type': 'assistant', 'message': {'content': [{'text': 'no'}]}}, done())",
            u"|A: a"_s);
        row(u"what comes after an error"_s, "say(failed(result='x'), delta('late'), reply('late'))",
            u"|! x"_s);
        row(u"what is no event is skipped"_s,
            "raw(b'\\n[1]\\n\\xff\\xfe\\n{\"type\": 5}\\n{\"a\\nnull\\n')\nsay({}, {'type': "
            "'stream_event'},"
            "{'type': 'stream_event', 'event': 5}, delta(5), {'type': 'assistant', 'message': {'content': "
            "7}},"
            "{'type': 'assistant', 'message': {'content': [1, {'type': 'text', 'text': None}]}}, delta('a'), "
            "done())",
            u"|A: a"_s);
        row(u"an error after some text"_s, "say(delta('a'), failed(result='broken'))", u"|A: a|! broken"_s);
        row(u"an error without text"_s, "say(failed(subtype='error_x'))", u"|! error_x"_s);
        row(u"a long error"_s, "say(failed(result='x' * 9000))", u"|! "_s + QString(600, u'x'));
        row(u"an unknown error"_s, "say(failed())", u"|! unknown error"_s);
        row(u"true, not something like it"_s, "say(delta('a'), {'type': 'result', 'is_error': 1})",
            u"|A: a"_s);
        row(u"an error that is told twice"_s, "say(reply('API Error: x'), failed(result='API Error: x'))",
            u"|! API Error: x"_s);
        row(u"an error that is told twice, after some text"_s,
            "say(delta('a'), reply('API Error: x'), failed(result='API Error: x'))",
            u"|A: a|! API Error: x"_s);
        row(u"an error in a list"_s, "say(failed(subtype='x', errors=['one', 'two']))", u"|! one\ntwo"_s);
        row(u"a message in parts"_s,
            "say(reply('x', id='1'), reply('a', id='2'), delta('b'), reply('b', id='2'), done())",
            u"|A: a\n\nb"_s);
        row(u"the end in the middle of a line"_s, "raw(b'{\"type\": \"result\"')",
            u"|! Claude stopped unexpectedly."_s);
        row(u"the end with a reason"_s,
            "say(delta('a'))\ncomplain('€'.encode() * 900 + b'\\xff why \\n')\nsys.exit(3)",
            u"|A: a|! "_s + QString(593, u'€') + QChar::ReplacementCharacter + u" why"_s);
        row(u"killed"_s, "os.kill(os.getpid(), 9)", u"|! Claude stopped unexpectedly."_s);
        row(u"a million deltas"_s,
            "line = json.dumps(delta('ab')).encode() + b'\\n'\nfor _ in range(200): raw(line * 5000)\n"
            "say(reply('end'), done())",
            u"|A: end"_s);
        row(u"long lines"_s,
            "say(delta('x' * 20_000_000), delta('behind'), reply('y' * 700_000), reply('z'), done())",
            u"|A: z"_s);
        row(u"a line beyond all bounds"_s, "raw(b' ' * 80_000_000 + b'{}\\n')\nsay(delta('a'), done())",
            u"|A: a"_s);
    }

    void deltasOfLongLinesKeepTheirPlace()
    {
        m_claude->follow("turn()\nsay(delta('x' * 600_000), delta('behind'))\nsys.exit(0)");
        ask(u"q"_s);
        QCOMPARE(m_ask->messages().last().text.size(), 600'006);
        QVERIFY(m_ask->messages().last().text.endsWith(u"xbehind"_s));
    }

    void saysWhyItCannotAsk()
    {
        qputenv("PATH", QFile::encodeName(m_home->path(u"nowhere"_s)));
        ask(u"q"_s);
        QCOMPARE(
            printed(*m_ask), u"Q: q|! Claude Code isn't installed — the `claude` command wasn't found."_s);
        m_ask->reset();
        m_home->writeScript(u".local/bin/claude"_s, "#!/nonexistent\n");
        ask(u"q"_s);
        QVERIFY2(
            printed(*m_ask).startsWith(u"Q: q|! Couldn't start Claude: "_s), qPrintable(printed(*m_ask)));
        m_ask->reset();
        m_ask->setAttachment(screen(QByteArray(3'000'000, 'x'), {}, {}));
        QVERIFY(resultOf("os.close(0)\ntime.sleep(60)").startsWith(u"Q: q|! Couldn't reach Claude: "_s));
        m_ask->setAttachment(screen("x", {}, {}));
        m_ask->reset();
        QCOMPARE(printed(*m_ask), QString());
        QVERIFY(!m_ask->attachment());
        resultOf("sys.exit(0)");
        QCOMPARE(resultOf("turn()\nsay(reply('ok'), done())"), u"Q: q|Q: q|A: ok"_s);
        ask(u"  \n "_s);
        QCOMPARE(m_ask->messages().size(), 3);
    }

    void aConversationGoesOnInANewProcessUnlessItIsNew()
    {
        m_claude->follow("turn()\nsay({'type': 'x', 'session_id': 'abc'})\n"
                         "raw(json.dumps(delta('part')).encode() + b'\\n{')\nturn()\n");
        m_ask->send(u"one"_s);
        QTRY_COMPARE(printed(*m_ask), u"Q: one|A: part"_s);
        m_ask->send(u"busy"_s);
        m_ask->stop();
        QVERIFY(!m_ask->isBusy());
        QCOMPARE(printed(*m_ask), u"Q: one|A: part"_s);
        m_claude->follow("turn()\nsay(reply('two'), done())\n");
        ask(u"two"_s);
        QCOMPARE(printed(*m_ask), u"Q: one|A: part|Q: two|A: two"_s);
        QCOMPARE(argumentsOf(1).mid(16), QStringList({u"--resume"_s, u"abc"_s}));
        m_ask->reset();
        QCOMPARE(printed(*m_ask), QString());
        ask(u"three"_s);
        QCOMPARE(argumentsOf(2).size(), 16);
    }

    void aConversationThatIsNotKnownAnyMoreIsGivenUp()
    {
        qsizetype start = 0;
        for (const auto &[script, argumentsAfterwards] :
             {std::pair<QByteArray, qsizetype>("complain(b'No conversation \\n')\nsys.exit(1)", 16),
              {"say(failed(subtype='x', session_id='old', errors=['No conversation']))\nsys.exit(1)", 16},
              {"complain(b'No conversation')\nsys.exit(3)", 18},
              {"turn()\nsay({})\ncomplain(b'No conversation')\nsys.exit(1)", 18}}) {
            m_claude->follow("turn()\nsay({'session_id': 'old'}, done())\nsys.exit(1)");
            ask(u"one"_s);
            awaitItsEnd();
            m_claude->follow(script);
            ask(u"two"_s);
            QCOMPARE(m_ask->problem(), u"No conversation"_s);
            awaitItsEnd();
            m_claude->follow("turn()\nsay(done())");
            ask(u"three"_s);
            QCOMPARE(argumentsOf(start + 1).size(), 18);
            QCOMPARE(argumentsOf(start + 2).size(), argumentsAfterwards);
            m_ask->reset();
            start += 3;
        }
    }

    void neitherAFullPipeNorADeafChildHoldsItUp()
    {
        m_claude->follow("signal.signal(signal.SIGTERM, signal.SIG_IGN)\nkeep('deaf', '')\ntime.sleep(60)");
        m_ask->setAttachment(screen(QByteArray(3'000'000, 'x'), {}, {}));
        QElapsedTimer blocked;
        blocked.start();
        m_ask->send(u"q"_s);
        QVERIFY2(blocked.elapsed() < 30'000, "the pipe holds 64 KB");
        QTRY_VERIFY(QFile::exists(m_home->path(u"deaf"_s)));
        const auto pid = static_cast<pid_t>(m_claude->starts().first()["pid"_L1].toInt());
        blocked.start();
        m_ask->stop();
        QCOMPARE(::kill(pid, 0), 0); // which has not been waited for
        QTRY_VERIFY_WITH_TIMEOUT(::kill(pid, 0) != 0, 10000);
        QVERIFY(blocked.elapsed() >= 1900);
        QVERIFY(!m_ask->problem());
    }
};

QTEST_GUILESS_MAIN(AskClaudeTest)
#include "tst_ask_claude.moc"
