#include <QMenu>
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

    void anAddonIsSwitchedAgainstWhatTheRunStartedWithAndSavedBeforeTheRestart()
    {
        for (const bool before : {false, true}) {
            PanelWorld world(before ? "addon.notes=true\n" : "");
            world.defaults.set(u"addon.notes"_s, !before); // meanwhile, from outside: without effect
            OpenMenu open(world);
            QByteArray onDisk;
            connect(&open.commands, &AppCommands::restartRequested, this, [&] {
                QFile file(world.home.path(u"preferences.conf"_s));
                if (file.open(QIODevice::ReadOnly))
                    onDisk = file.readAll();
            });
            open.choose(u"Meeting Recorder"_s);
            QVERIFY2(onDisk.contains(before ? "addon.notes=false\n" : "addon.notes=true\n"), onDisk);
        }
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
