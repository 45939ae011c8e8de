#include <QTest>

#include "Terminals/KittyWindow.h"
#include "Terminals/TerminalCommand.h"
#include "Terminals/WindowWay.h"
#include "support/FakeProcessTable.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class TestTerminals : public QObject {
    Q_OBJECT

    FakeProcessTable m_processes;
    QMap<pid_t, pid_t> m_parents;

    // What became of the variables, as one line.
    static QString told(const QByteArray &environment)
    {
        const TerminalVariables variables = terminalVariables(environment);
        QStringList parts;
        if (variables.window != 0)
            parts.append(QString::number(variables.window));
        if (const auto &tmux = variables.tmux)
            parts.append(u"tmux %1 %2 %3"_s.arg(tmux->socket, QString::number(tmux->server), tmux->pane));
        if (const auto &screen = variables.screen)
            parts.append(u"screen %1 %2 %3"_s.arg(screen->session).arg(screen->server).arg(screen->window));
        if (const auto &konsole = variables.konsole)
            parts.append(u"konsole %1 %2 %3"_s.arg(konsole->service, konsole->window).arg(konsole->session));
        if (const auto &kitty = variables.kitty)
            parts.append(u"kitty %1 %2 %3"_s.arg(kitty->socket).arg(kitty->process).arg(kitty->window));
        return parts.join(u", "_s);
    }

    [[nodiscard]] WindowWay wayFrom(pid_t pid) const
    {
        const auto parentOf = [this](pid_t child) {
            return m_parents.contains(child) ? std::optional(m_parents.value(child)) : std::nullopt;
        };
        const auto tool = [](const QString &) { return std::nullopt; };
        return WindowWayFinder({m_processes, parentOf, tool}, {60}).find(pid);
    }

private Q_SLOTS:
    void init()
    {
        m_parents = {{90, 80}, {80, 70}, {70, 60}};
        m_processes = {};
        m_processes.known.insert(90, {.name = u"claude"_s, .hasTerminal = true});
    }

    void variablesCountOnlyInTheirForm()
    {
        const QByteArray tmux = "TMUX=/tmp/tmux-1000/default,70,3";
        const QByteArray konsole = "KONSOLE_DBUS_SERVICE=:1.42\nKONSOLE_DBUS_WINDOW=/Windows/1\n";
        const QByteArray kitty = "KITTY_LISTEN_ON=unix:@kitty\nKITTY_PID=60\nKITTY_WINDOW_ID=";
        for (const auto &[environment, expected] : std::initializer_list<std::pair<QByteArray, QString>>{
                 {"", u""_s},
                 {"HOME=/root\nWINDOWID=4194316\nX", u"4194316"_s},
                 {"WINDOWID=0x40000c", u""_s},
                 {"WINDOWID=-1", u""_s},
                 {"WINDOWID=99999999999", u""_s},
                 {"WINDOWID=9999999999", u""_s},
                 {"OLD_WINDOWID=5\nWINDOWID =6", u""_s},
                 {tmux + "\nTMUX_PANE=%12", u"tmux /tmp/tmux-1000/default 70 %12"_s},
                 {tmux, u""_s},
                 {tmux + "\nTMUX_PANE=12", u""_s},
                 {"TMUX=tmp/socket,70,3\nTMUX_PANE=%1", u""_s},
                 {"TMUX=/" + QByteArray(600, 'x') + ",70,3\nTMUX_PANE=%1", u""_s},
                 {"TMUX=/tmp/\x1b[31m,70,3\nTMUX_PANE=%1", u""_s},
                 {"STY=70.work\nWINDOW=2", u"screen 70.work 70 2"_s},
                 {"STY=70.a/b\nWINDOW=2", u""_s},
                 {"STY=-70.work\nWINDOW=2", u""_s},
                 {konsole + "KONSOLE_DBUS_SESSION=/Sessions/7", u"konsole :1.42 /Windows/1 7"_s},
                 {konsole + "KONSOLE_DBUS_SESSION=/Sessions/x", u""_s},
                 {konsole + "KONSOLE_DBUS_SESSION=/Sessions/7\nKONSOLE_DBUS_SERVICE=org.other", u""_s},
                 {kitty + '3', u"kitty unix:@kitty 60 3"_s},
                 {kitty + "id:3", u""_s},
                 {kitty + "3\nKITTY_LISTEN_ON=tcp:example.org:80", u""_s}})
            QCOMPARE(told(QByteArray(environment).replace('\n', '\0')), expected);
        QCOMPARE(shellQuoted(u"/tmp/it's $HOME"_s), u"'/tmp/it'\\''s $HOME'"_s);
    }

    void kittysWindowIsTheOneWithTheFocusInItsTab()
    {
        const auto listing = [](const QByteArray &tab, const QByteArray &window) -> QByteArray {
            return R"([{"tabs":[{"is_focused":false,"windows":[{"id":1,"is_focused":true}]},{"is_focused":)"
                + tab + R"(,"windows":[{"id":2},{"id":3,"is_focused":)" + window + "}]}]}]";
        };
        QVERIFY(isKittyWindowFocused(listing("true", "true"), 3));
        for (const quint32 window : {1, 2, 4})
            QVERIFY(!isKittyWindowFocused(listing("true", "true"), window));
        QVERIFY(!isKittyWindowFocused(listing("true", "false"), 3));
        QVERIFY(!isKittyWindowFocused("[{", 3));
    }

    void saysInAFewWordsWhyThereIsNoWindow()
    {
        m_parents = {{90, 80}, {80, 70}};
        m_processes.known.insert(80, {.name = u"sh"_s});
        const ProcessInfo seen = m_processes.known.value(90);
        QCOMPARE(wayFrom(90).obstacle, u"No window of it was found"_s);
        m_processes.environments.insert(90, "WAYLAND_DISPLAY=wayland-0");
        QCOMPARE(wayFrom(90).obstacle, u"Cannot raise a Wayland window"_s);
        m_processes.known[90].hasTerminal = false;
        QCOMPARE(wayFrom(90).obstacle, u"Runs without a terminal"_s);
        m_processes.known[80].name = u"sshd-session"_s;
        QCOMPARE(wayFrom(90).obstacle, u"Runs over SSH, shown elsewhere"_s);
        m_processes.known[90].isContained = true;
        QCOMPARE(wayFrom(90).obstacle, u"Runs in a container"_s);
        QCOMPARE(wayFrom(91).obstacle, u"Its process has ended"_s);
        m_processes.environments.insert(90, QByteArray("STY=70.work\0WINDOW=2", 20));
        m_processes.known.insert(70, {.name = u"screen"_s, .isOrphan = true});
        QCOMPARE(wayFrom(90).obstacle, u"Runs in screen, terminal unknown"_s);
        QCOMPARE(wayFrom(90).attachCommand, u"screen -x '70.work'"_s);
        m_processes.known[70].isOrphan = false;
        QCOMPARE(wayFrom(90).obstacle, u"Runs in a container"_s);
    }

    void aMultiplexerCountsOnlyAsAnAncestorBelowTheApplication()
    {
        const auto environment = [](pid_t server) {
            return QByteArray(
                "WINDOWID=5\nTMUX=/nonexistent," + QByteArray::number(server) + ",0\nTMUX_PANE=%1");
        };
        const auto from = [&](pid_t server) {
            m_processes.environments.insert(90, environment(server).replace('\n', '\0'));
            return wayFrom(90);
        };
        m_parents.insert(60, 50);
        for (const pid_t stale : {50, 55, 0}) {
            QCOMPARE(from(stale).chain, (QList<pid_t>{90, 80, 70, 60}));
            QCOMPARE(from(stale).window, 5U);
            QVERIFY(from(stale).obstacle.isEmpty());
        }
        QCOMPARE(from(70).obstacle, u"Runs in tmux, which is silent"_s);
        QVERIFY(from(70).chain.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestTerminals)
#include "tst_terminals.moc"
