#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <unistd.h>

#include "Shell/ChildProcess.h"
#include "Shell/Terminal.h"
#include "support/TemporaryHome.h"

using namespace nubble;
using namespace Qt::StringLiterals;

namespace {

using Terminals = QList<std::pair<QString, QByteArray>>; // by name, what each does

const auto runs = "\"$program\""_ba;
const auto fails = "exit 1"_ba;

} // namespace

class TerminalTest : public QObject {
    Q_OBJECT

private:
    // Terminals that are told apart from those of the machine by the PATH. Each keeps how it was called, and
    // goes on with what it does, for which the program is $program.
    void install(const Terminals &terminals)
    {
        m_home.emplace();
        for (const auto &[name, does] : terminals)
            m_home->writeScript(
                u"bin/"_s + name,
                does == "no script" ? does
                                    : "#!/bin/sh\nhome=${0%/bin/*}; for program; do :; done\necho \"${0##*/} "
                                      "$*|$PWD|$PATH\" >>$home/calls\n"
                        + does);
        qputenv("PATH", QFile::encodeName(u"bin:"_s + m_home->path(u"bin"_s)));
    }
    [[nodiscard]] QString program(const QString &name) const
    {
        return m_home->writeScript(
            name, "#!/bin/sh\necho begun >>" + QFile::encodeName(m_home->path(u"begun"_s)));
    }
    [[nodiscard]] QByteArray opens(const QString &program) const
    {
        Terminal terminal(program, m_home->path(u"."_s));
        QSignalSpy opened(&terminal, &Terminal::opened);
        terminal.open();
        if (!opened.isEmpty() || !opened.wait(20000))
            return "told at the wrong time";
        QTest::qWait(50); // nothing more is told
        return opened.size() > 1 ? "told twice" : opened.first().first().toBool() ? "open" : "none";
    }
    [[nodiscard]] QByteArray calls() const
    {
        QByteArray names;
        for (const QByteArray &line : m_home->read(u"calls"_s).split('\n'))
            names += line.left(line.indexOf(' ')) + ' ';
        return names.trimmed();
    }

    std::optional<TemporaryHome> m_home;

private Q_SLOTS:
    void theFirstThatWorksOpensOneWindow()
    {
        const auto row = [this](
                             const char *name, const Terminals &terminals, const char *called,
                             const char *outcome = "open") {
            install(terminals);
            QVERIFY2(opens(program(u"it's"_s)) == outcome, name);
            QVERIFY2(calls() == called, name);
            QVERIFY2(m_home->read(u"begun"_s).count('\n') <= 1, name);
        };
        const auto xterm = std::pair(u"xterm"_s, runs);
        const auto chosen = [](const QByteArray &does) { return std::pair(u"xdg-terminal-exec"_s, does); };
        row("there is none", {}, "", "none");
        row("none works", {chosen(fails), {u"foot"_s, fails}}, "xdg-terminal-exec foot", "none");
        row("the user's choice", {xterm, {u"konsole"_s, runs}, chosen(runs)}, "xdg-terminal-exec");
        row("some do not work",
            {chosen(fails), {u"x-terminal-emulator"_s, "kill -9 $$"}, {u"kitty"_s, "no script"}, xterm},
            "xdg-terminal-exec x-terminal-emulator xterm");
        row("it hands it over", {chosen("exit 0"), xterm}, "xdg-terminal-exec");
        row("its window has been closed", {chosen(runs + "; exit 5"), xterm}, "xdg-terminal-exec");
        row("it is slow", {chosen("/bin/sleep 1.5; " + runs + "; exit 5"), xterm}, "xdg-terminal-exec");
        row("it never begins", {chosen("exec /bin/sleep 5"), xterm}, "xdg-terminal-exec");
        row("it fails slowly", {chosen("/bin/sleep 0.3; exit 1"), xterm}, "xdg-terminal-exec xterm");
    }

    void eachIsAskedInItsOwnLanguage()
    {
        install(
            {{u"xdg-terminal-exec"_s, fails},
             {u"x-terminal-emulator"_s, fails},
             {u"gnome-terminal"_s, fails},
             {u"tilix"_s, fails},
             {u"xfce4-terminal"_s, fails},
             {u"wezterm"_s, fails},
             {u"xterm"_s, runs}});
        for (const QString &name : {u"plain"_s, u"with \"a\" space"_s}) {
            const QString path = program(name);
            QFile::remove(m_home->path(u"calls"_s));
            QCOMPARE(opens(path), "open");
            const bool isPlain = !name.contains(u' ');
            QByteArray expected;
            for (const char *call :
                 {"xdg-terminal-exec", "x-terminal-emulator -e", "gnome-terminal --", "xfce4-terminal -x",
                  "tilix -e", "wezterm start --", "xterm -e"})
                if (const QByteArray each = call;
                    isPlain || (!each.startsWith("x-") && !each.startsWith("ti")))
                    expected += each + ' ' + QFile::encodeName(path) + '|'
                        + QFile::encodeName(m_home->home().path()) + '|' + qgetenv("PATH") + '\n';
            QCOMPARE(m_home->read(u"calls"_s), expected);
        }
    }

    void itLivesOnAfterTheProgramHasBeenKilled()
    {
        install({{u"xterm"_s, runs + R"(
            while kill -0 $PPID; do /bin/sleep 0.1; done 2>/dev/null
            echo noise; echo noise >&2; read -r nothing; echo lives >$home/lives)"}});
        const CommandEnd end =
            runCommand({QCoreApplication::applicationFilePath(), {u"open"_s, program(u"p"_s)}}, {}, {});
        QCOMPARE(end.code, SIGKILL);
        QTRY_COMPARE(m_home->read(u"lives"_s), "lives\n");
    }
};

// A program that opens a terminal, and is killed.
static int openAndDie(const QString &program)
{
    Terminal terminal(program, u"/"_s);
    QObject::connect(&terminal, &Terminal::opened, [] { ::kill(::getpid(), SIGKILL); });
    terminal.open();
    return QCoreApplication::exec();
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments.at(1) == u"open")
        return openAndDie(arguments.at(2));
    TerminalTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_terminal.moc"
