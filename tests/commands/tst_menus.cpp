#include <QSignalSpy>
#include <QTest>

#include "Commands/AppCommands.h"
#include "Commands/ChosenKeys.h"
#include "Commands/ControlObject.h"
#include "Commands/Menus.h"
#include "Sessions/NoticePreferences.h"
#include "notch/PanelUnderTest.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace nubble;

namespace {

// "[x]" is checked, "[ ]" could be, "(…)" is disabled, "-" a separator.
QString shown(const QList<MenuEntry> &entries)
{
    QStringList lines;
    for (const MenuEntry &entry : entries) {
        QString text = entry.title.isEmpty() ? u"-"_s : entry.title;
        if (!entry.shortcut.isEmpty())
            text += u' ' + entry.shortcut.toString();
        if (!entry.entries.isEmpty())
            text += u" {"_s + shown(entry.entries) + u'}';
        if (entry.checked)
            text.prepend(*entry.checked ? u"[x] "_s : u"[ ] "_s);
        lines.append(entry.enabled ? text : u'(' + text + u')');
    }
    return lines.join(u", "_s);
}

// None if there is no such entry.
MenuEntry find(const QList<MenuEntry> &entries, const QString &title)
{
    for (const MenuEntry &entry : entries) {
        if (entry.title == title)
            return entry;
        if (MenuEntry below = find(entry.entries, title); !below.title.isEmpty())
            return below;
    }
    return {};
}

void choose(const QList<MenuEntry> &entries, const QStringList &titles)
{
    for (const QString &title : titles) {
        const MenuEntry entry = find(entries, title);
        QVERIFY2(entry.action && entry.enabled, qPrintable(title));
        entry.action();
    }
}

// The menus as they open in that world.
struct OpenMenus {
    explicit OpenMenus(PanelWorld &world, const QMap<Addon, QString> &missing = {})
        : panel(world),
          commands(panel.window, world.placement, world.mainScreen, world.defaults, world.addons)
    {
        const NotchPlacement &placement = world.placement;
        const MenuState state{placement.edge(),      placement.isLocked(),
                              placement.isVisible(), NoticePreferences::in(world.defaults).isOn(),
                              world.addons,          missing};
        ofIcon = statusMenu(state, commands);
        ofPanel = notchMenu(state, commands);
    }

    PanelUnderTest panel;
    AppCommands commands;
    QList<MenuEntry> ofIcon;
    QList<MenuEntry> ofPanel;
};

} // namespace

class TestMenus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theyOfferEverythingInItsOrder()
    {
        PanelWorld world;
        OpenMenus menus(world);
        QVERIFY(shown(menus.ofIcon).startsWith(u"[x] Hide Notch, -, [ ] Lock Position, Move to Edge {"_s));
        QCOMPARE(
            shown(menus.ofPanel),
            u"Lock Position, Move to Edge {[x] Right, [ ] Left, [ ] Top, [ ] Bottom}, Center on Edge, "
            "Add-ons {[ ] Ask Claude About Screen, [ ] Search Chats, [ ] Quenwick, [ ] Meeting Recorder}, "
            "[x] Notify Me, Refresh Everything, Restart Nubble, Hide Notch, Quit Nubble"_s);
        PanelWorld withAddons("addon.search=true\naddon.ask=true\nplacement.visible=false\n");
        QCOMPARE(
            shown(OpenMenus(withAddons).ofIcon),
            u"Search Chats… Ctrl+Alt+Space, Ask Claude About Screen… Ctrl+Alt+A, -, "
            "[ ] Show Notch, -, [ ] Lock Position, "
            "Move to Edge {[x] Right, [ ] Left, [ ] Top, [ ] Bottom}, Center on Edge, -, "
            "Add-ons {[ ] Quenwick, [x] Ask Claude About Screen, [x] Search Chats, [ ] Meeting Recorder, -, "
            "(Nubble restarts to add or remove one.)}, [x] Notify Me, -, "
            "Refresh Everything Ctrl+R, Restart Nubble, -, Quit Nubble Ctrl+Q"_s);
    }

    void theySwitchTheNoticesOnWhereNoneIsWantedAndElseOff()
    {
        PanelWorld world("notifications.waiting=false\n");
        for (const bool on : {false, true}) {
            choose(OpenMenus(world).ofIcon, {u"Notify Me"_s});
            const auto wanted = NoticePreferences::in(world.defaults);
            QVERIFY(wanted.waiting == on && wanted.done == on);
            QCOMPARE(find(OpenMenus(world).ofPanel, u"Notify Me"_s).checked, std::optional(on));
        }
    }

    void aChosenKeyIsOneKeyWithAModifier()
    {
        for (const auto &[text, expected] :
             {std::pair(u"Ctrl+Alt+N"_s, u"Ctrl+Alt+N"_s),
              {u"alt+shift+f5"_s, u"Alt+Shift+F5"_s},
              {u"Meta+Space"_s, u"Meta+Space"_s},
              {u"N"_s, {}},
              {u"Shift+N"_s, {}},
              {u"Ctrl+"_s, {}},
              {u"Ctrl+Alt"_s, {}},
              {u"Ctrl+N, Ctrl+M"_s, {}},
              {u"Ctrl+Bogus"_s, {}},
              {u"Ctrl+N+M"_s, {}},
              {QString(), {}}}) {
            const auto keys = chosenKeys(text);
            QCOMPARE(keys ? keysText(*keys) : QString(), expected);
        }
    }

    void anAddonIsAskedByTheMenuAndOverTheBus()
    {
        using Action = AddonRequest::Action;
        PanelWorld world("addon.search=true\naddon.ask=true\n");
        OpenMenus menus(world);
        QList<AddonRequest> requests;
        for (const Addon addon : {Addon::Search, Addon::Ask})
            menus.commands.setHandler(addon, [&requests](const AddonRequest &request) {
                requests.append(request);
                return Outcome::done();
            });
        choose(menus.ofIcon, {u"Search Chats…"_s, u"Ask Claude About Screen…"_s});
        ControlObject control;
        control.serve(menus.commands);
        for (const QString &question : {u"Why?"_s, QString()})
            control.findChild<ControlAdaptor *>()->Ask(question);
        const AddonRequest withQuestion{Action::AskClaude, u"Why?"_s};
        const AddonRequest without{Action::AskClaude};
        QCOMPARE(requests, (QList<AddonRequest>{{Action::SearchChats}, without, withQuestion, without}));
    }

    void theyChangeThePlacementUnlessItIsLocked()
    {
        PanelWorld world("placement.offset=40\n");
        OpenMenus menus(world);
        choose(menus.ofIcon, {u"Left"_s, u"Lock Position"_s});
        choose(menus.ofPanel, {u"Center on Edge"_s, u"Hide Notch"_s});
        QCOMPARE(world.placement.edge(), NotchEdge::Left);
        QCOMPARE(world.placement.offset(), 0);
        QVERIFY(!world.placement.isVisible());
        QVERIFY(world.placement.isLocked());
        choose(menus.ofIcon, {u"Hide Notch"_s}); // as it was open all the while
        choose(menus.ofPanel, {u"Lock Position"_s});
        QVERIFY(!world.placement.isVisible() && world.placement.isLocked());

        OpenMenus locked(world);
        const auto placement =
            u"Move to Edge {([ ] Right), ([x] Left), ([ ] Top), ([ ] Bottom)}, (Center on Edge), "_s;
        QVERIFY(shown(locked.ofIcon).contains(u"[x] Lock Position, "_s + placement));
        QVERIFY(shown(locked.ofPanel).startsWith(u"Unlock Position, "_s + placement));
        for (const auto &[menu, title] :
             {std::pair(&locked.ofPanel, u"Unlock Position"_s), {&locked.ofIcon, u"Lock Position"_s}}) {
            world.placement.setLocked(true);
            choose(*menu, {title});
            QVERIFY(!world.placement.isLocked());
        }
    }

    // It says what it is for and lacks, and can be switched nonetheless.
    void anAddonIsSwitchedAgainstWhatTheRunStartedWithAndSavedBeforeTheRestart()
    {
        for (const bool before : {false, true}) {
            PanelWorld world(before ? "addon.notes=true\n" : "");
            world.defaults.set(u"addon.notes"_s, !before); // meanwhile, from outside: without effect
            OpenMenus menus(world, {{Addon::Notes, u"Needs Node.js."_s}});
            QByteArray onDisk;
            connect(&menus.commands, &AppCommands::restartRequested, this, [&] {
                if (QFile file(world.home.path(u"preferences.conf"_s)); file.open(QIODevice::ReadOnly))
                    onDisk = file.readAll();
            });
            const QList<MenuEntry> menu = before ? menus.ofPanel : menus.ofIcon;
            const MenuEntry notes = find(menu, u"Meeting Recorder"_s);
            QCOMPARE(notes.toolTip + u' ' + notes.detail, description(Addon::Notes) + u" Needs Node.js."_s);
            QVERIFY(find(menu, u"Quenwick"_s).detail.isEmpty());
            choose(menu, {notes.title});
            QVERIFY2(onDisk.contains(before ? "addon.notes=false\n" : "addon.notes=true\n"), onDisk);
        }
    }

    void whatOtherProgramsBroadcastBecomesARequest()
    {
        using Action = AddonRequest::Action;
        const QMap<QString, QString> stop{{u"action"_s, u"stop"_s}};
        QCOMPARE(requestFrom(u"ask"_s, {{u"question"_s, u"Why?"_s}})->question, u"Why?"_s);
        QCOMPARE(requestFrom(u"ask"_s, stop), AddonRequest{Action::AskClaude});
        QCOMPARE(requestFrom(u"notes"_s, stop), AddonRequest{Action::StopNotes});
        QCOMPARE(requestFrom(u"notes"_s, {{u"action"_s, u"Stop"_s}}), AddonRequest{Action::StartNotes});
        QCOMPARE(requestFrom(u"search"_s, {}), std::nullopt);
    }
};

QTEST_MAIN(TestMenus)
#include "tst_menus.moc"
