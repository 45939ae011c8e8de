#include <QApplication>
#include <QTest>

#include "Platform/X11/X11Connection.h"
#include "Platform/X11/X11Workspace.h"
#include "platform/ForeignApplication.h"

using namespace nubble;

class TestX11Workspace : public QObject {
    Q_OBJECT

private:
    X11Workspace m_workspace{X11Connection::ofThisProgram()};
    ForeignApplication m_terminal{4242};
    ForeignApplication m_editor{4343};

    [[nodiscard]] QList<pid_t> runningPids() const
    {
        QList<pid_t> pids;
        for (const RunningApplication &each : m_workspace.runningApplications())
            pids.append(each.pid.value_or(0));
        return pids;
    }
    [[nodiscard]] std::vector<uint32_t> stacking() const
    {
        return m_terminal.numbers(m_terminal.root(), "_NET_CLIENT_LIST_STACKING");
    }

private Q_SLOTS:
    void cleanup()
    {
        m_terminal.closeAll();
        m_editor.closeAll();
        QTRY_COMPARE(runningPids(), QList<pid_t>());
    }

    void believesNoNonsenseAndSaysWhereNobodyBringsWindowsForward()
    {
        const auto window = m_terminal.open({0, 0, 100, 100}, Qt::red);
        for (const std::vector<uint32_t> &nonsense :
             {std::vector<uint32_t>{0}, {0xFFFFFFFF}, {}, std::vector<uint32_t>(60'000, 7)}) {
            m_terminal.setNumbers(window, "_NET_WM_PID", nonsense);
            QCOMPARE(runningPids(), QList<pid_t>());
        }
        m_terminal.setText(window, "_NET_WM_PID", "4242");
        QCOMPARE(runningPids(), QList<pid_t>());

        m_terminal.setNumbers(window, "_NET_WM_PID", {4242});
        m_terminal.setText(window, "WM_CLIENT_MACHINE", "a-machine-far-away.example");
        QCOMPARE(runningPids(), QList<pid_t>());

        m_terminal.setText(window, "WM_CLIENT_MACHINE", "localhost");
        m_terminal.setText(window, "WM_CLASS", QByteArray(100'000, 'x'));
        QCOMPARE(runningPids(), QList<pid_t>{4242});
        QVERIFY(m_workspace.runningApplications().first().name.size() <= 1024);

        std::vector<uint32_t> list(60'000, 0x7FFFFFFF); // windows that have gone
        list.front() = window;
        for (const char *property : {"_NET_CLIENT_LIST", "_NET_CLIENT_LIST_STACKING"})
            m_terminal.setNumbers(m_terminal.root(), property, list, "WINDOW");
        QCOMPARE(runningPids(), QList<pid_t>{4242});
        QCOMPARE(m_workspace.activateNearest({4242}), Activation::Requested);
        QCOMPARE(m_workspace.activateNearest({4343, 0}), Activation::NotFound);
        m_terminal.setNumbers(m_terminal.root(), "_NET_CLIENT_LIST", {window}, "WINDOW");

        QVERIFY(m_workspace.canActivate());
        const auto supported = m_terminal.numbers(m_terminal.root(), "_NET_SUPPORTED");
        m_terminal.setNumbers(m_terminal.root(), "_NET_SUPPORTED", {}, "ATOM"); // no window manager
        QVERIFY(!m_workspace.canActivate());
        QCOMPARE(m_workspace.activateNearest({4343}), Activation::Impossible);
        m_terminal.setNumbers(m_terminal.root(), "_NET_SUPPORTED", supported, "ATOM");
    }

    void activatingARunningApplicationRaisesAllItsWindowsInTheirOrder()
    {
        const auto below = m_terminal.open({0, 0, 300, 300}, Qt::red);
        const auto above = m_terminal.open({50, 50, 300, 300}, Qt::red);
        m_terminal.focus(above);
        const auto text = m_editor.open({100, 100, 300, 300}, Qt::blue);
        m_editor.focus(text);
        QTRY_COMPARE(stacking().back(), text);
        ForeignApplication menu(4444);
        (void)menu.open({400, 0, 100, 100}, Qt::red, ForeignApplication::Unmanaged);
        const RunningApplication first{4242, QStringLiteral("Terminal"), QStringLiteral("terminal")};
        QCOMPARE(m_workspace.runningApplications().first(), first);
        QCOMPARE(runningPids(), (QList<pid_t>{4242, 4343}));

        // 4444 has no managed window, 0 names no process, and 4343 is not the nearest.
        QCOMPARE(m_workspace.activateNearest({4444, 0, 4242, 4343}), Activation::Requested);
        QTRY_COMPARE(m_terminal.focusedWindow(), above);
        QTRY_COMPARE(stacking(), (std::vector<uint32_t>{text, below, above}));
    }

    void deiconifiesWhatLiesOnTheDesktopInViewBelowTheOthers()
    {
        const auto kept = m_terminal.open({0, 0, 300, 300}, Qt::red);
        const auto here = m_terminal.open({50, 50, 300, 300}, Qt::red);
        const auto elsewhere = m_terminal.open({50, 50, 300, 300}, Qt::red);
        ForeignApplication::manage(elsewhere, QStringLiteral("-r"), QStringLiteral("-t 1"));
        for (const auto window : {here, elsewhere}) {
            ForeignApplication::manage(window, QStringLiteral("-r"), QStringLiteral("-b add,hidden"));
            QTRY_VERIFY(m_terminal.hasState(window, "_NET_WM_STATE_HIDDEN"));
        }
        QCOMPARE(m_workspace.activateNearest({4242}), Activation::Requested);
        QTRY_VERIFY(!m_terminal.hasState(here, "_NET_WM_STATE_HIDDEN"));
        QTRY_COMPARE(m_terminal.focusedWindow(), kept);
        QVERIFY(m_terminal.hasState(elsewhere, "_NET_WM_STATE_HIDDEN"));
    }
};

QTEST_MAIN(TestX11Workspace)
#include "tst_x11_workspace.moc"
