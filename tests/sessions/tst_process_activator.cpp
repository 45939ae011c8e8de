#include <QHash>
#include <QTest>

#include <unistd.h>

#include "Sessions/ProcessActivator.h"
#include "support/FakeWorkspace.h"

using namespace Qt::StringLiterals;
using namespace nubble;

class ProcessActivatorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
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
            {40, u"XTerm"_s, u"xterm"_s},
            {::getpid(), u"claude-notch"_s, u"Claude"_s},
            {41, u"Editor"_s, u"claude"_s},
            {42, u"com.Claude.desktop"_s, u"main"_s},
            {43, u"other"_s, u"Claude"_s}};
        QCOMPARE(activatedFor(90), QList<pid_t>{42});
        m_workspace.applications.removeAt(3);
        QCOMPARE(activatedFor(90), QList<pid_t>{43});
        m_workspace.allowed = false;
        QVERIFY(!ProcessActivator(m_workspace).canActivate());
        QCOMPARE(ProcessActivator(m_workspace).activate(::getpid()), Activation::Impossible);
    }

private:
    QList<pid_t> activatedFor(pid_t pid)
    {
        m_workspace.activated.clear();
        ProcessActivator activator(m_workspace, [this](pid_t child) {
            return m_parents.contains(child) ? std::optional(m_parents.value(child)) : std::nullopt;
        });
        (void)activator.activate(pid);
        return m_workspace.activated;
    }

    FakeWorkspace m_workspace;
    QHash<pid_t, pid_t> m_parents;
};

QTEST_GUILESS_MAIN(ProcessActivatorTest)
#include "tst_process_activator.moc"
