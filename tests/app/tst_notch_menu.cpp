#include <QMenu>
#include <QSignalSpy>
#include <QTest>

#include "AppCommands.h"
#include "NotchMenu.h"
#include "support/PanelWorld.h"

using namespace Qt::StringLiterals;
using namespace nubble;

namespace {

// "[x]" is checked, "[ ]" could be, "(…)" is disabled.
QString shown(const QAction &action)
{
    QString text = action.text();
    if (action.isCheckable())
        text.prepend(action.isChecked() ? u"[x] "_s : u"[ ] "_s);
    return action.isEnabled() ? text : u'(' + text + u')';
}

QString shown(const QMenu &menu)
{
    QStringList lines;
    for (const QAction *action : menu.actions())
        lines.append(
            action->menu() ? action->text() + u" {"_s + shown(*action->menu()) + u'}' : shown(*action));
    return lines.join(u", "_s);
}

// The menu as it opens in that world.
struct OpenMenu {
    explicit OpenMenu(PanelWorld &world)
        : commands(
            world.placement, world.mainScreen, world.defaults, world.addons, world.monitor, world.planUsage)
    {
        const MenuState state{
            .edge = world.placement.edge(), .locked = world.placement.isLocked(), .addons = world.addons};
        fill(menu, notchMenu(state, commands));
    }

    void choose(const QString &title)
    {
        for (QAction *action : menu.findChildren<QAction *>())
            if (action->text() == title)
                return action->trigger();
        QFAIL(qPrintable(u"no entry "_s + title));
    }

    AppCommands commands;
    QMenu menu;
};

} // namespace

class TestNotchMenu : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itOffersEverythingInItsOrder()
    {
        PanelWorld world("addon.search=true\n");
        QCOMPARE(
            shown(OpenMenu(world).menu),
            u"Lock Position, Move to Edge {[x] Right, [ ] Left, [ ] Top, [ ] Bottom}, Center on Edge, "
            "Add-ons {[ ] Ask Claude About Screen, [x] Search Chats, [ ] Quenwick, [ ] Meeting Recorder}, "
            "Refresh Everything, Restart Nubble, Hide Notch, Quit Nubble"_s);
    }

    void aLockedPanelIsNotMoved()
    {
        PanelWorld world("placement.locked=true\nplacement.edge=top\nplacement.offset=40\n");
        OpenMenu open(world);
        QVERIFY(shown(open.menu).startsWith(
            u"Unlock Position, Move to Edge {([ ] Right), ([ ] Left), ([x] Top), ([ ] Bottom)}, (Center on Edge), "_s));
        open.choose(u"Left"_s);
        open.choose(u"Center on Edge"_s);
        QCOMPARE(world.placement.edge(), NotchEdge::Top);
        QCOMPARE(world.placement.offset(), 40);
        open.choose(u"Unlock Position"_s);
        QVERIFY(!world.placement.isLocked());
    }

    void entriesMoveAndHideThePanel()
    {
        PanelWorld world("placement.offset=1e300\n");
        OpenMenu open(world);
        open.choose(u"Bottom"_s);
        QCOMPARE(world.placement.edge(), NotchEdge::Bottom);
        QVERIFY(world.placement.offset() < world.mainScreen.frame()->width() / 2);
        open.choose(u"Center on Edge"_s);
        QCOMPARE(world.placement.offset(), 0);
        open.choose(u"Hide Notch"_s);
        QVERIFY(!world.placement.isVisible());
        open.choose(u"Lock Position"_s);
        QVERIFY(world.placement.isLocked());
    }

    void anAddonIsSwitchedAgainstWhatTheRunStartedWithAndSavedBeforeTheRestart_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after");
        QTest::newRow("on") << u"Ask Claude About Screen"_s << u"addon.ask"_s << QByteArray()
                            << QByteArray("true");
        QTest::newRow("off") << u"Meeting Recorder"_s << u"addon.notes"_s << QByteArray("true")
                             << QByteArray("false");
        QTest::newRow("edited") << u"Quenwick"_s << u"addon.quenwick"_s << QByteArray("yes")
                                << QByteArray("true");
    }

    void anAddonIsSwitchedAgainstWhatTheRunStartedWithAndSavedBeforeTheRestart()
    {
        QFETCH(const QString, title);
        QFETCH(const QString, key);
        QFETCH(const QByteArray, before);
        QFETCH(const QByteArray, after);
        PanelWorld world(before.isEmpty() ? QByteArray() : key.toUtf8() + '=' + before + '\n');
        world.defaults.set(key, after == "true"); // meanwhile, from outside: without effect
        OpenMenu open(world);
        QByteArray onDisk;
        connect(&open.commands, &AppCommands::restartRequested, this, [&] {
            QFile file(world.home.path(u"preferences.conf"_s));
            if (file.open(QIODevice::ReadOnly))
                onDisk = file.readAll();
        });
        open.choose(title);
        QVERIFY2(onDisk.contains(QByteArray(key.toUtf8() + "=" + after + "\n")), onDisk.constData());
    }

    void restartAndQuitAreAskedForOnce()
    {
        PanelWorld world;
        OpenMenu open(world);
        const QSignalSpy restart(&open.commands, &AppCommands::restartRequested);
        const QSignalSpy quit(&open.commands, &AppCommands::quitRequested);
        open.choose(u"Restart Nubble"_s);
        QCOMPARE(restart.count(), 1);
        QCOMPARE(quit.count(), 0);
        open.choose(u"Quit Nubble"_s);
        QCOMPARE(restart.count(), 1);
        QCOMPARE(quit.count(), 1);
    }

    void refreshingReadsSessionsAndTranscriptsAgain()
    {
        PanelWorld world;
        OpenMenu open(world);
        world.addSession(11, QString(), u"idle"_s, 0);
        world.home.write(
            u".claude/projects/-work-project/session-11.jsonl"_s,
            "{\"type\":\"ai-title\",\"aiTitle\":\"A title\",\"sessionId\":\"session-11\"}\n");
        open.choose(u"Refresh Everything"_s);
        QCOMPARE(world.monitor.sessions().size(), 1);
        world.monitor.details().waitForDone();
        QCOMPARE(world.monitor.details().byId().value(u"session-11"_s).title, u"A title"_s);
    }
};

QTEST_MAIN(TestNotchMenu)
#include "tst_notch_menu.moc"
