#include <QSemaphore>
#include <QTest>

#include <unistd.h>

#include "Sessions/ProcessActivator.h"
#include "support/FakeProcessTable.h"
#include "support/FakeWorkspace.h"
#include "support/TemporaryHome.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

class ProcessActivatorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_home = std::make_unique<TemporaryHome>(); }

    void bringsTheNearestAncestorForwardThatIsAnApplicationAskingOnce()
    {
        m_workspace.applications = {
            {1, u"Init"_s, u"init"_s}, {50, u"Desktop"_s, u"desktop"_s}, {60, u"XTerm"_s, u"xterm"_s}};
        m_parents = {{90, 80}, {80, 70}, {70, 60}, {60, 50}, {6, 1}, {5, 5}, {4, 3}, {3, 4}};
        for (const pid_t pid : {90, 60})
            QCOMPARE(activatedFor(pid), QList<pid_t>{60});
        QCOMPARE(m_workspace.lookups, 2);
        for (const pid_t pid : {6, 5, 4, 2}) // the root, loops, an end
            QCOMPARE(activatedFor(pid), QList<pid_t>{});
    }

    void aWishIsReplacedUntilItBeginsAndEachIsToldOnce()
    {
        m_workspace.applications = {{60, u"XTerm"_s, u"xterm"_s}};
        QSemaphore asked;
        QSemaphore go;
        TerminalLookups lookups = this->lookups();
        lookups.parentOf = [&](pid_t) {
            asked.release();
            (void)go.tryAcquire(1, 10'000);
            return std::nullopt;
        };
        QStringList told;
        ProcessActivator activator(m_workspace, lookups);
        const auto wish = [&](pid_t pid) {
            activator.activate({pid, u"title %1"_s.arg(pid)}, [&told, pid](const Outcome &outcome) {
                told.append(u"%1 %2"_s.arg(pid).arg(outcome.why()));
            });
        };
        wish(1);
        asked.acquire();
        for (const pid_t pid : {2, 3, 60})
            wish(pid);
        QCOMPARE(told, (QStringList{u"2 Another session was picked"_s, u"3 Another session was picked"_s}));
        go.release();
        activator.waitForDone();
        QCOMPARE(told.mid(2), (QStringList{u"1 Its process has ended"_s, u"60 "_s}));
        QCOMPARE(m_workspace.activated, QList<pid_t>{60});
        QCOMPARE(m_workspace.wanted.title, u"title 60"_s);
        m_workspace.front = m_workspace.applications.first();
        QList<bool> inFront;
        go.release();
        for (const pid_t pid : {60, 61})
            activator.askIfInFront({pid, {}}, [&inFront](bool is) { inFront.append(is); });
        activator.waitForDone();
        QCOMPARE(inFront, (QList<bool>{true, false}));
    }

    void looksAtTwentyFourAncestorsAtMost()
    {
        for (pid_t pid = 101; pid < 200; ++pid)
            m_parents.insert(pid, pid - 1);
        m_workspace.applications = {{100, u"XTerm"_s, u"xterm"_s}};
        QCOMPARE(activatedFor(124), QList<pid_t>{100});
        QCOMPARE(activatedFor(125), QList<pid_t>{});
    }

    void fallsBackToClaudesOwnApplicationIfTheDesktopCanActivate()
    {
        m_workspace.applications = {
            {::getpid(), u"claude-notch"_s, u"Claude"_s},
            {41, u"Editor"_s, u"claude"_s},
            {42, u"com.Claude.desktop"_s, u"main"_s},
            {43, u"other"_s, u"Claude"_s}};
        QCOMPARE(activatedFor(90), QList<pid_t>{42});
        m_workspace.applications.removeAt(2);
        QCOMPARE(activatedFor(90), QList<pid_t>{43});
        m_parents = {{90, 70}};
        m_processes.known.insert(70, {.name = u"screen"_s, .isOrphan = true});
        m_processes.environments.insert(90, QByteArray("STY=70.work\0WINDOW=2", 20));
        QCOMPARE(activatedFor(90), QList<pid_t>{}); // it waits for a terminal
        m_workspace.allowed = false;
        ProcessActivator activator(m_workspace, lookups());
        QVERIFY(!activator.canActivate());
        activator.activate({::getpid(), {}}, [](const Outcome &outcome) { QVERIFY(!outcome.isDone()); });
        activator.waitForDone();
    }

    void knowsAParentByPsOrTheKernelsTableWhereThatIsMissing()
    {
        m_processes.known.insert(::getpid(), {.name = u"test"_s, .parent = 42});
        QCOMPARE(TerminalLookups::askingPs(m_processes)(::getpid()), std::optional(::getppid()));
        const auto withoutPs = TerminalLookups::askingPs(m_processes, m_home->path(u"ps"_s));
        QCOMPARE(withoutPs(::getpid()), std::optional(42));
        QCOMPARE(withoutPs(1), std::nullopt);
    }

private:
    TerminalLookups lookups() const
    {
        const auto parentOf = [this](pid_t child) {
            return m_parents.contains(child) ? std::optional(m_parents.value(child)) : std::nullopt;
        };
        return {m_processes, parentOf, [](const QString &) { return std::nullopt; }};
    }
    QList<pid_t> activatedFor(pid_t pid)
    {
        m_workspace.activated.clear();
        ProcessActivator activator(m_workspace, lookups());
        activator.activate({pid, {}}, [](const Outcome &) {});
        activator.waitForDone();
        return m_workspace.activated;
    }

    std::unique_ptr<TemporaryHome> m_home;
    FakeProcessTable m_processes;
    FakeWorkspace m_workspace;
    QHash<pid_t, pid_t> m_parents;
};

QTEST_GUILESS_MAIN(ProcessActivatorTest)
#include "tst_process_activator.moc"
