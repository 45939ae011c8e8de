#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Search/ChatSearch.h"
#include "Search/ResumeText.h"
#include "Shell/ChildProcess.h"
#include "support/ManualClock.h"
#include "support/TemporaryHome.h"

using namespace nubble;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class ChatOpeningTest : public QObject {
    Q_OBJECT

private:
    [[nodiscard]] QByteArray bytes(const QString &relative) const
    {
        return QFile::encodeName(m_home->path(relative));
    }
    [[nodiscard]] QStringList scripts() const
    {
        return QDir(ResumeScripts::folder(m_home->home())).entryList(QDir::Files);
    }
    [[nodiscard]] unsigned mode(const QString &relative) const
    {
        struct stat info { };
        return ::lstat(bytes(relative), &info) == 0 ? info.st_mode & 07777U : 0;
    }
    // What becomes of it: the link that is opened, why nothing is, or "done".
    template <typename Chat> QString opened(const Chat &chat)
    {
        QString link;
        ChatSearch search(m_home->home(), [&](const QUrl &url) { link = url.toString(); });
        std::optional<Outcome> told;
        connect(&search, &ChatSearch::opened, this, [&](const Outcome &outcome) { told = outcome; });
        search.open(chat);
        if (told)
            return u"told at once"_s;
        if (!QTest::qWaitFor([&] { return told.has_value(); }, m_expectsNothing ? 100 : 20000))
            return u"nothing"_s;
        return !told->isDone() ? told->why() : link.isEmpty() ? u"done"_s : link;
    }
    QString resumed(const QString &command)
    {
        ChatHit hit;
        hit.source = u"code"_s;
        hit.resume = command;
        return opened(hit);
    }
    // Of a file that has lain there for `age`.
    void age(const QString &relative, std::chrono::seconds age) const
    {
        const auto then =
            std::chrono::duration_cast<std::chrono::seconds>(m_clock.now().time_since_epoch()) - age;
        const timespec time{then.count(), 0};
        const std::array<timespec, 2> times{time, time};
        QVERIFY(::utimensat(AT_FDCWD, bytes(relative), times.data(), AT_SYMLINK_NOFOLLOW) == 0);
    }
    static QTimer &timerOf(ResumeScripts &scripts) { return *scripts.findChild<QTimer *>(); }

    std::optional<TemporaryHome> m_home;
    ManualClock m_clock;
    bool m_expectsNothing = false;

private Q_SLOTS:
    // The only terminal runs what it is given, without a window.
    void init()
    {
        m_expectsNothing = false;
        m_home.emplace();
        m_home->writeScript(u"bin/xterm"_s, "#!/bin/sh\nexec \"$2\"");
        qputenv("PATH", bytes(u"bin"_s));
        qputenv("ZDOTDIR", bytes(u"."_s));
    }

    void aShellThatUnderstandsTheCommandIsTaken()
    {
        const QStringList taken{u"zsh"_s, u"fish"_s, u"tcsh"_s, u"bash"_s};
        const QStringList unfit{u"nologin"_s, u"nu"_s, u"sp ace/bash"_s, u"d/"_s.repeated(50) + u"/bash"_s};
        for (const QString &each : taken + unfit)
            m_home->writeScript(each, "");
        m_home->write(u"plain/bash"_s, "");
        QDir().mkpath(m_home->path(u"folder/bash"_s));
        const auto chosen = [this](const QString &zsh, const QString &login) {
            return resumeShell(m_home->path(zsh), m_home->path(login));
        };
        for (const QString &each : taken) {
            QCOMPARE(chosen(u"none"_s, each), m_home->path(each));
            QCOMPARE(chosen(u"zsh"_s, each), m_home->path(u"zsh"_s));
        }
        for (const QString &each : unfit + QStringList{u"missing/bash"_s, u"plain/bash"_s, u"folder/bash"_s})
            QCOMPARE(chosen(u"none"_s, each), u"/bin/sh"_s);
        for (const QString &login : {u"bash"_s, QString()})
            QCOMPARE(resumeShell(m_home->path(u"none"_s), login), u"/bin/sh"_s);
    }

    void theScriptGoesOnInALoginShell()
    {
        QCOMPARE(
            resumeScript(u"claude -r 'ü'"_s, u"/bin/zsh"_s), "#!/bin/zsh -l\nclaude -r 'ü'\nexec zsh -l\n");
        QCOMPARE(resumeScript(u"a\nb"_s, u"/a/fish"_s), "#!/a/fish -l\na\nb\nexec /a/fish -l\n");
        QCOMPARE(resumeScript(u"a"_s, u"/a/tcsh"_s), "#!/a/tcsh\na\nexec /a/tcsh -l\n");
        for (const QString &name : {u"sh"_s, u"bash"_s, u"dash"_s, u"zsh"_s, u"fish"_s, u"tcsh"_s}) {
            const QString shell = QStandardPaths::findExecutable(name, {u"/bin"_s, u"/usr/bin"_s});
            if (shell.isEmpty())
                continue;
            const auto text = resumeScript(u"cd /usr && pwd"_s, shell);
            Command command{m_home->writeScript(u"script"_s, text.value_or(QByteArray()))};
            command.environment.emplace();
            command.environment->insert(u"HOME"_s, m_home->home().path());
            const CommandEnd end = runCommand(command, "echo stays\n", {.errors = 1000});
            const bool ran = end.output.startsWith("/usr\n"); // then some say that they have no terminal
            QVERIFY2(ran && end.output.endsWith("stays\n"), qPrintable(name));
        }
    }

    void aSessionIsResumedInATerminal()
    {
        ::chmod(QFile::encodeName(m_home->home().path()), 0755);
        QDir().mkpath(m_home->path(u".nubble"_s));
        ::chmod(bytes(u".nubble"_s), 0777);
        const QString command = u"pwd >'%1'"_s.arg(m_home->path(u"ran"_s));
        const mode_t before = ::umask(077);
        QCOMPARE(resumed(command), u"done"_s);
        ::umask(before);
        QTRY_COMPARE(m_home->read(u"ran"_s).trimmed(), QFile::encodeName(m_home->home().path()));
        QCOMPARE(mode(u".nubble"_s), 0755U);
        QCOMPARE(mode(u".nubble/resume"_s), 0700U);
        QCOMPARE(scripts().size(), 1);
        const QString script = u".nubble/resume/"_s + scripts().first();
        QCOMPARE(mode(script), 0755U);
        QVERIFY(
            QRegularExpression(u"^yarnbin-[0-9a-f-]{36}\\.command$"_s).match(scripts().first()).hasMatch());
        QCOMPARE(m_home->read(script), resumeScript(command, resumeShell(u"/bin/zsh"_s, loginShell())));
        ChatThread thread;
        thread.source = u"code"_s;
        thread.resume = u"true"_s;
        QCOMPARE(opened(thread), u"done"_s);
        QCOMPARE(scripts().size(), 2);
        QFile::remove(m_home->path(u"bin/xterm"_s));
        QCOMPARE(resumed(u"true"_s), u"No terminal found to resume in."_s);
        for (const QString &bad : {QString(u"a\0b"_s), QString(1'000'000, u'x')})
            QVERIFY(resumed(bad).startsWith(u"The session can't be resumed: its command "));
    }

    void aFolderThatIsNotOursAloneIsNotUsed_data()
    {
        QTest::addColumn<QByteArray>("prepare");
        QByteArrayList rows{
            "mkdir .nubble; touch .nubble/resume",
            "touch .nubble",
            "mkdir .nubble; mkfifo .nubble/resume",
            "mkfifo .nubble",
            "mkdir -p .nubble other; chmod 700 other; ln -s ../other .nubble/resume",
            "ln -s .nubble .nubble",
            "mkdir .nubble; ln -s nowhere .nubble/resume",
            "full"};
        const QByteArray make = "mkdir -p .nubble/resume; chmod 700 .nubble/resume; ";
        rows += {make + "chmod 710 .nubble/resume", make + "chmod 704 .nubble/resume"};
        if (::geteuid() == 0)
            rows += {make + "chown 65534 .nubble/resume", make + "chown 65534 .nubble"};
        else
            rows += make + "chmod 500 .nubble/resume";
        for (const QByteArray &prepare : rows)
            QTest::newRow(prepare) << prepare;
    }
    void aFolderThatIsNotOursAloneIsNotUsed()
    {
        QFETCH(QByteArray, prepare);
        Command shell{u"/bin/sh"_s, {u"-c"_s, QString::fromLatin1("PATH=/usr/bin:/bin; " + prepare)}};
        shell.folder = m_home->home().path();
        rlimit before{};
        ::getrlimit(RLIMIT_FSIZE, &before);
        if (prepare == "full") {
            ::signal(SIGXFSZ, SIG_IGN);
            const rlimit tight{10, before.rlim_max};
            ::setrlimit(RLIMIT_FSIZE, &tight);
        } else {
            QCOMPARE(runCommand(shell, {}, {.errors = 100}).code, 0);
        }
        const QString told = resumed(u"touch '%1'"_s.arg(m_home->path(u"ran"_s)));
        ::setrlimit(RLIMIT_FSIZE, &before);
        const QString folder = m_home->path(u".nubble/resume"_s);
        QVERIFY2(
            told.startsWith(u"The session can't be resumed: the folder "_s + folder + u" cannot be used: "),
            qPrintable(told));
        QVERIFY(!QFile::exists(m_home->path(u"ran"_s)) && scripts().isEmpty());
    }

    void linksAreChecked()
    {
        const auto check =
            [this](const char *source, const std::array<const char *, 3> &links, const QString &becomes) {
                ChatHit hit;
                hit.source = QString::fromLatin1(source);
                const std::array fields{&hit.resume, &hit.appUrl, &hit.url};
                for (size_t i = 0; i < links.size(); ++i)
                    if (links.at(i))
                        *fields.at(i) = QString::fromUtf8(links.at(i));
                m_expectsNothing = becomes == u"nothing";
                QCOMPARE(opened(hit), becomes);
            };
        const QString refused = u"This link can't be opened."_s;
        check("chat", {}, u"nothing"_s);
        check("code", {"", "", ""}, u"nothing"_s);
        check("chat", {"exit", nullptr, nullptr}, u"nothing"_s);
        check("code", {nullptr, nullptr, "https://a/b"}, u"https://a/b"_s);
        check("chat", {"exit", "claude://c/1", "https://a"}, u"claude://c/1"_s);
        check("chat", {nullptr, nullptr, "HTTP://A:80/?q=ü#f"}, u"http://a:80/?q=ü#f"_s);
        check("chat", {nullptr, "file:///etc/passwd", "https://a"}, refused);
        for (const char *link :
             {"javascript:alert(1)", "data:text/html,x", "/bin/sh", "a", "https:", "https:///a", "http:a",
              "https://a b/", " https://a", "https://a\n", "-h", "claudette:x", "https://[::1", "://a"})
            check("chat", {nullptr, nullptr, link}, refused);
        const QByteArray huge = "https://a/" + QByteArray(1'000'000, 'a');
        check("chat", {nullptr, nullptr, huge.constData()}, refused);
        QVERIFY(!QFile::exists(m_home->path(u".nubble"_s))); // where nothing is resumed
    }

    void oldScriptsAreRemovedAndNothingElse()
    {
        const QString folder = u".nubble/resume/"_s;
        const auto isWrittenBy = [](ResumeScripts &scripts) { // behind all that it does by itself
            bool isWritten = false;
            scripts.write("", [&](const Outcome &outcome, const QString &) { isWritten = outcome.isDone(); });
            return QTest::qWaitFor([&] { return isWritten; });
        };
        {
            ResumeScripts none(m_home->home(), m_clock);
            QVERIFY(isWrittenBy(none));
            QCOMPARE(timerOf(none).intervalAsDuration(), 24h); // it did not run
            QDir(m_home->path(u".nubble"_s)).removeRecursively();
        }
        m_home->write(u"target"_s, {});
        const QStringList staying{
            u"notes.command"_s, u"yarnbin-1"_s, u"yarnbin-link.command"_s, u"yarnbin-young.command"_s};
        for (const QString &name : staying + QStringList(u"yarnbin-old.command"_s)) {
            if (name.contains(u"link"))
                QFile::link(m_home->path(u"target"_s), m_home->path(folder + name));
            else
                m_home->write(folder + name, {});
            age(folder + name, name.contains(u"young") ? 86399s : 86400s);
        }
        ::mkfifo(bytes(folder + u"yarnbin-fifo.command"_s), 0600);
        QDir().mkdir(m_home->path(folder + u"yarnbin-folder.command"_s));
        ::chmod(bytes(folder), 0700);
        ResumeScripts sweeping(m_home->home(), m_clock);
        QTRY_VERIFY(timerOf(sweeping).isActive());
        QCOMPARE(scripts(), staying);
        QVERIFY(timerOf(sweeping).intervalAsDuration() <= 1s);
        m_clock.advance(1s);
        QTRY_VERIFY(!scripts().contains(u"yarnbin-young.command"_s));
        QCOMPARE(
            QDir(m_home->path(folder))
                .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
                .size(),
            5);
        QVERIFY(isWrittenBy(sweeping));
        QCOMPARE(timerOf(sweeping).intervalAsDuration(), 24h); // it did not run
    }

    void aFloodOfScriptsIsRemovedInParts()
    {
        const QString folder = u".nubble/resume/"_s;
        for (int i = 0; i < 10'050; ++i) {
            const QString name = folder + u"yarnbin-%1.command"_s.arg(i);
            i == 0 ? void(m_home->write(name, {}))
                   : void(::link(bytes(folder + u"yarnbin-0.command"_s), bytes(name)));
        }
        age(folder + u"yarnbin-0.command"_s, 200'000s);
        ::chmod(bytes(folder), 0700);
        ResumeScripts sweeping(m_home->home(), m_clock);
        QTRY_VERIFY_WITH_TIMEOUT(timerOf(sweeping).isActive(), 20000);
        QCOMPARE(scripts().size(), 50);
        QCOMPARE(timerOf(sweeping).intervalAsDuration(), 1h);
    }
};

QTEST_GUILESS_MAIN(ChatOpeningTest)
#include "tst_chat_opening.moc"
