#include <QBuffer>
#include <QSignalSpy>
#include <QTest>

#include <csignal>

#include "Ask/AskClaude.h"
#include "Platform/Clock.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Sessions/SessionMonitor.h"
#include "Shell/ChildProcess.h"
#include "Shell/Tools.h"
#include "ask/MessagesServer.h"
#include "ask/PrintedConversation.h"
#include "support/TemporaryHome.h"

using namespace nubble;
using namespace Qt::StringLiterals;

// The real `claude` in a home of its own, against a service of ours: nothing leaves the machine, and no
// account is needed.
class RealClaudeTest : public QObject {
    Q_OBJECT

private:
    void ask(const QString &text)
    {
        m_ask->send(text);
        QTRY_VERIFY_WITH_TIMEOUT(!m_ask->isBusy(), 60000);
    }
    // The processes that work in its folder.
    [[nodiscard]] QList<pid_t> claudes() const
    {
        QList<pid_t> pids;
        for (const QString &pid : QDir(u"/proc"_s).entryList(QDir::Dirs))
            if (QFileInfo(u"/proc/%1/cwd"_s.arg(pid)).symLinkTarget() == m_folder)
                pids.append(pid.toInt());
        return pids;
    }

    QString m_program;
    MessagesServer m_server;
    std::optional<TemporaryHome> m_home;
    QString m_folder;
    std::optional<AskClaude> m_ask;

private Q_SLOTS:
    void initTestCase()
    {
        const QString named = qEnvironmentVariable("NUBBLE_CLAUDE");
        m_program =
            named.isEmpty() ? Tools::find(u"claude"_s, Home(QDir::homePath())).value_or(QString()) : named;
        QVERIFY2(
            QFileInfo(m_program).isExecutable(), "There is no `claude` here; NUBBLE_CLAUDE can name it.");
        for (const QString &name : QProcessEnvironment::systemEnvironment().keys())
            if (name.startsWith("ANTHROPIC_"_L1) || name.startsWith("CLAUDE"_L1))
                qunsetenv(name.toLatin1());
        qputenv("ANTHROPIC_BASE_URL", "http://127.0.0.1:" + QByteArray::number(m_server.serverPort()));
        qputenv("ANTHROPIC_API_KEY", "none");
        qputenv("NO_PROXY", "127.0.0.1");
        qputenv("CLAUDE_CODE_DISABLE_NONESSENTIAL_TRAFFIC", "1");
        qputenv("CLAUDECODE", "1"); // as if started from a terminal of Claude Code
        qputenv("CLAUDE_CODE_CHILD_SESSION", "1");
        qputenv("CLAUDE_CODE_ENTRYPOINT", "cli");
        qputenv("CLAUDE_CODE_SESSION_ID", "11111111-1111-4111-8111-111111111111");
    }

    void init()
    {
        m_home.emplace();
        qputenv("HOME", QFile::encodeName(m_home->path({})));
        QDir().mkpath(m_home->path(u".local/bin"_s));
        QVERIFY(QFile::link(m_program, m_home->path(u".local/bin/claude"_s)));
        m_folder = AskClaude::workingDirectory(m_home->home());
        m_ask.emplace(m_home->home());
    }

    void cleanup()
    {
        m_ask.reset();
        QTRY_VERIFY(claudes().isEmpty());
    }

    void oneProcessTakesQuestionsWithAndWithoutAPicture()
    {
        m_server.answerWith({MessagesServer::message({{u"Hel"_s, u"lo"_s}})});
        QSignalSpy grown(&*m_ask, &AskClaude::replyGrew);
        ask(u"one"_s);
        QCOMPARE(grown.size(), 2);
        const QList<pid_t> before = claudes();
        QCOMPARE(before.size(), 1);

        QBuffer jpeg;
        QVERIFY(QImage(1568, 980, QImage::Format_RGB32).save(&jpeg, "JPEG"));
        m_home->write(u"secret"_s, "never read");
        m_ask->setAttachment(ScreenContext{.jpeg = jpeg.data(), .windowTitle = u"a @~/secret b"_s});
        ask(u"two"_s);
        QCOMPARE(printed(*m_ask), u"Q: one|A: Hello|Q: two|A: Hello"_s);
        QCOMPARE(claudes(), before);
        const QJsonArray blocks = m_server.lastBlocks();
        QCOMPARE(blocks.size(), 2);
        QCOMPARE(blocks[0]["source"_L1]["media_type"_L1], u"image/jpeg"_s);
        QCOMPARE(blocks[0]["source"_L1]["data"_L1], QString::fromLatin1(jpeg.data().toBase64()));
        QCOMPARE(blocks[1]["text"_L1], u"[On screen: a @~/secret b]\n\ntwo"_s);
        QVERIFY(!m_server.requests().last().contains("never read"));
    }

    void whatComesOfAnAnswer()
    {
        const QByteArray parts = MessagesServer::message({{u"a"_s, u"b"_s}, {u"c"_s}});
        for (const auto &[stream, breaksOff, result] :
             {std::tuple(parts, false, u"|A: ab\n\nc"_s),
              {QByteArray(), false, u"|! API Error: 400 no"_s},
              {parts, true, u"|A: ab|! API Error: 400 no"_s}}) {
            cleanup();
            init();
            m_server.answerWith({.stream = stream, .breaksOff = breaksOff});
            ask(u"q"_s);
            QCOMPARE(printed(*m_ask).mid(4), result);
        }
    }

    void aConversationGoesOnAfterAStopAndAnewWhenItIsLost()
    {
        const QByteArray all = MessagesServer::message({{u"part"_s}});
        m_server.answerWith({.stream = all, .breaksOff = true, .neverEnds = true});
        m_ask->send(u"first question"_s);
        QTRY_COMPARE_WITH_TIMEOUT(printed(*m_ask), u"Q: first question|A: part"_s, 60000);
        m_ask->stop();
        QTRY_VERIFY(claudes().isEmpty());
        QVERIFY(!m_ask->problem());

        m_server.answerWith({all});
        ask(u"second question"_s);
        QVERIFY(m_server.requests().last().contains("first question"));
        QCOMPARE(m_server.lastBlocks().last()["text"_L1], u"second question"_s);

        m_ask->stop();
        QTRY_VERIFY(claudes().isEmpty());
        QVERIFY(QDir(m_home->path(u".claude/projects"_s)).removeRecursively());
        ask(u"third question"_s);
        QVERIFY2(m_ask->problem()->contains("No conversation found"_L1), qPrintable(*m_ask->problem()));
        QTRY_VERIFY(claudes().isEmpty());
        QTest::qWait(0); // for the news of its end
        ask(u"fourth question"_s);
        QVERIFY(!m_ask->problem());
        QVERIFY(!m_server.requests().last().contains("first question"));
    }

    void itsSessionIsNotTheUsers()
    {
        m_server.answerWith({MessagesServer::message({{u"a"_s}})});
        ask(u"q"_s);
        const auto sessionsBut = [this](const QString &own) {
            SessionMonitor monitor(
                QStringList{m_home->path(u".claude"_s)}, own, LinuxProcessTable(), SystemClock());
            monitor.waitForDone();
            return monitor.sessions().size();
        };
        QTRY_COMPARE(sessionsBut({}), 1);
        QCOMPARE(sessionsBut(m_folder), 0);
    }

    void itEndsWithAProgramThatIsKilled()
    {
        m_server.answerWith(
            {.stream = MessagesServer::message({{u"a"_s}}), .breaksOff = true, .neverEnds = true});
        const qsizetype before = m_server.requests().size();
        ChildProcess program({QCoreApplication::applicationFilePath(), {u"ask"_s}});
        program.start();
        QTRY_COMPARE_WITH_TIMEOUT(m_server.requests().size(), before + 1, 60000);
        QCOMPARE(claudes().size(), 1);
        QVERIFY(program.signal(SIGKILL));
        QTRY_VERIFY(claudes().isEmpty());
    }
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc == 2 && argv[1] == QByteArray("ask")) {
        AskClaude ask{Home(QDir::homePath())};
        ask.send(u"q"_s);
        return QCoreApplication::exec();
    }
    RealClaudeTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_real_claude.moc"
