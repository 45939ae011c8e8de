#include <QSignalSpy>
#include <QTest>

#include "Commands/AppCommands.h"
#include "Commands/Menus.h"
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
        if (!entry.detail.isEmpty())
            text += u" / "_s + entry.detail;
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

const MenuEntry *find(const QList<MenuEntry> &entries, const QString &title)
{
    for (const MenuEntry &entry : entries) {
        if (entry.title == title)
            return &entry;
        if (const MenuEntry *below = find(entry.entries, title))
            return below;
    }
    return nullptr;
}

void choose(const QList<MenuEntry> &entries, const QString &title)
{
    const MenuEntry *entry = find(entries, title);
    QVERIFY2(entry && entry->action && entry->enabled, qPrintable(title));
    entry->action();
}

// The menus as they open in that world.
struct OpenMenus {
    explicit OpenMenus(PanelWorld &world, const QMap<Addon, QString> &missing = {})
        : panel(world),
          commands(panel.window, world.placement, world.mainScreen, world.defaults, world.addons),
          state{
              .edge = world.placement.edge(),
              .locked = world.placement.isLocked(),
              .visible = world.placement.isVisible(),
              .addons = world.addons,
              .missing = missing}
    {
    }

    [[nodiscard]] QList<MenuEntry> ofIcon() { return statusMenu(state, commands); }
    [[nodiscard]] QList<MenuEntry> ofPanel() { return notchMenu(state, commands); }

    PanelUnderTest panel;
    AppCommands commands;
    MenuState state;
};

} // namespace

class TestMenus : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theyOfferEverythingInItsOrder()
    {
        PanelWorld world;
        OpenMenus menus(world);
        QCOMPARE(
            shown(menus.ofIcon()),
            u"[x] Hide Notch, -, [ ] Lock Position, "
            "Move to Edge {[x] Right, [ ] Left, [ ] Top, [ ] Bottom}, Center on Edge, -, "
            "Add-ons {[ ] Quenwick, [ ] Ask Claude About Screen, [ ] Search Chats, [ ] Meeting Recorder, -, "
            "(Nubble restarts to add or remove one.)}, -, "
            "Refresh Everything Ctrl+R, Restart Nubble, -, Quit Nubble Ctrl+Q"_s);
        QCOMPARE(
            shown(menus.ofPanel()),
            u"Lock Position, Move to Edge {[x] Right, [ ] Left, [ ] Top, [ ] Bottom}, Center on Edge, "
            "Add-ons {[ ] Ask Claude About Screen, [ ] Search Chats, [ ] Quenwick, [ ] Meeting Recorder}, "
            "Refresh Everything, Restart Nubble, Hide Notch, Quit Nubble"_s);
    }

    void theIconsMenuStartsWithWhatTheActiveAddonsOffer()
    {
        const auto start = [](const QByteArray &stored) {
            PanelWorld world(stored + "placement.visible=false\n");
            return shown(OpenMenus(world).ofIcon()).section(u", -, [ ] Lock"_s, 0, 0);
        };
        const auto search = u"Search Chats… Ctrl+Alt+Space"_s;
        const auto ask = u"Ask Claude About Screen… Ctrl+Alt+A"_s;
        QCOMPARE(
            start("addon.search=true\naddon.ask=true\n"), search + u", "_s + ask + u", -, [ ] Show Notch"_s);
        QCOMPARE(start("addon.ask=true\n"), ask + u", -, [ ] Show Notch"_s);
        QCOMPARE(start("addon.notes=true\naddon.quenwick=true\n"), u"[ ] Show Notch"_s);

        PanelWorld world("addon.search=true\naddon.ask=true\n");
        OpenMenus menus(world);
        QList<AddonRequest> requests;
        for (const Addon addon : {Addon::Search, Addon::Ask})
            menus.commands.setHandler(addon, [&requests](const AddonRequest &request) {
                requests.append(request);
                return Outcome::done();
            });
        choose(menus.ofIcon(), u"Search Chats…"_s);
        choose(menus.ofIcon(), u"Ask Claude About Screen…"_s);
        QCOMPARE(
            requests,
            (QList<AddonRequest>{{AddonRequest::Action::SearchChats}, {AddonRequest::Action::AskClaude}}));
    }

    void anAddonThatLacksSomethingSaysSoAndCanBeSwitchedNonetheless()
    {
        PanelWorld world;
        OpenMenus menus(world, {{Addon::Notes, u"Needs Node.js."_s}});
        for (const auto &entries : {menus.ofIcon(), menus.ofPanel()})
            QVERIFY(
                shown(entries).contains(u" Quenwick, "_s)
                && shown(entries).contains(u"[ ] Meeting Recorder / Needs Node.js."_s));
        const QSignalSpy restarts(&menus.commands, &AppCommands::restartRequested);
        choose(menus.ofIcon(), u"Meeting Recorder"_s);
        QCOMPARE(restarts.count(), 1);
    }

    void aLockedPanelIsNotMovedButUnlocked()
    {
        PanelWorld world("placement.locked=true\nplacement.edge=top\n");
        OpenMenus menus(world);
        QVERIFY(
            shown(menus.ofIcon())
                .contains(
                    u"[x] Lock Position, Move to Edge {([ ] Right), ([ ] Left), ([x] Top), ([ ] Bottom)}, "
                    "(Center on Edge), "_s));
        QVERIFY(shown(menus.ofPanel())
                    .startsWith(u"Unlock Position, Move to Edge {([ ] Right), ([ ] Left), ([x] Top), "
                                "([ ] Bottom)}, (Center on Edge), "_s));
        choose(menus.ofPanel(), u"Unlock Position"_s);
        QVERIFY(!world.placement.isLocked());
        choose(menus.ofIcon(), u"Lock Position"_s);
        QVERIFY(world.placement.isLocked());
    }

    void theyChangeThePlacement()
    {
        PanelWorld world("placement.offset=40\n");
        OpenMenus menus(world);
        choose(menus.ofIcon(), u"Left"_s);
        choose(menus.ofPanel(), u"Center on Edge"_s);
        choose(menus.ofIcon(), u"Hide Notch"_s);
        QCOMPARE(world.placement.edge(), NotchEdge::Left);
        QCOMPARE(world.placement.offset(), 0);
        QVERIFY(!world.placement.isVisible());
    }

    void anAddonIsSwitchedAgainstWhatTheRunStartedWithAndSavedBeforeTheRestart()
    {
        for (const bool before : {false, true}) {
            PanelWorld world(before ? "addon.notes=true\n" : "");
            world.defaults.set(u"addon.notes"_s, !before); // meanwhile, from outside: without effect
            OpenMenus menus(world);
            QByteArray onDisk;
            connect(&menus.commands, &AppCommands::restartRequested, this, [&] {
                QFile file(world.home.path(u"preferences.conf"_s));
                if (file.open(QIODevice::ReadOnly))
                    onDisk = file.readAll();
            });
            choose(menus.ofPanel(), u"Meeting Recorder"_s);
            QVERIFY2(onDisk.contains(before ? "addon.notes=false\n" : "addon.notes=true\n"), onDisk);
        }
    }

    void whatOtherProgramsBroadcastBecomesARequest()
    {
        using Action = AddonRequest::Action;
        const auto question = u"question"_s;
        const auto action = u"action"_s;
        QCOMPARE(
            requestFrom(u"ask"_s, {{question, u"Why?"_s}}), (AddonRequest{Action::AskClaude, u"Why?"_s}));
        QCOMPARE(requestFrom(u"ask"_s, {{action, u"stop"_s}}), AddonRequest{Action::AskClaude});
        QCOMPARE(requestFrom(u"notes"_s, {{action, u"stop"_s}}), AddonRequest{Action::StopNotes});
        QCOMPARE(requestFrom(u"notes"_s, {{action, u"Stop"_s}}), AddonRequest{Action::StartNotes});
        QCOMPARE(requestFrom(u"notes"_s, {}), AddonRequest{Action::StartNotes});
        QCOMPARE(requestFrom(u"search"_s, {}), std::nullopt);
    }
};

QTEST_MAIN(TestMenus)
#include "tst_menus.moc"
