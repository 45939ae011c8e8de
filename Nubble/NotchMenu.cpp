#include "NotchMenu.h"

#include <QMenu>

#include "AppCommands.h"

using namespace Qt::StringLiterals;

namespace nubble {

namespace {

MenuEntry entry(const QString &title, const std::function<void()> &action)
{
    MenuEntry entry;
    entry.title = title;
    entry.action = action;
    return entry;
}

MenuEntry submenu(const QString &title, const QList<MenuEntry> &entries)
{
    MenuEntry entry;
    entry.title = title;
    entry.entries = entries;
    return entry;
}

QList<MenuEntry> edgeEntries(const MenuState &state, AppCommands &commands)
{
    QList<MenuEntry> entries;
    for (const NotchEdge edge : allEdges) {
        MenuEntry each = entry(title(edge), [&commands, edge] { commands.moveToEdge(edge); });
        each.checked = edge == state.edge;
        each.enabled = !state.locked;
        entries.append(each);
    }
    return entries;
}

QList<MenuEntry> addonEntries(const MenuState &state, AppCommands &commands)
{
    QList<MenuEntry> entries;
    for (const Addon addon : {Addon::Ask, Addon::Search, Addon::Quenwick, Addon::Notes}) {
        MenuEntry each = entry(title(addon), [&commands, addon] { commands.toggleAddon(addon); });
        each.checked = state.addons.contains(addon);
        each.toolTip = description(addon);
        entries.append(each);
    }
    return entries;
}

} // namespace

QList<MenuEntry> notchMenu(const MenuState &state, AppCommands &commands)
{
    MenuEntry center = entry(u"Center on Edge"_s, [&commands] { commands.centerOnEdge(); });
    center.enabled = !state.locked;
    return {
        entry(
            state.locked ? u"Unlock Position"_s : u"Lock Position"_s,
            [&commands] { commands.toggleLocked(); }),
        submenu(u"Move to Edge"_s, edgeEntries(state, commands)),
        center,
        submenu(u"Add-ons"_s, addonEntries(state, commands)),
        entry(u"Refresh Everything"_s, [&commands] { commands.refreshAll(); }),
        entry(u"Restart Nubble"_s, [&commands] { commands.restart(); }),
        entry(u"Hide Notch"_s, [&commands] { commands.toggleVisible(); }),
        entry(u"Quit Nubble"_s, [&commands] { commands.quit(); }),
    };
}

void fill(QMenu &menu, const QList<MenuEntry> &entries)
{
    menu.setToolTipsVisible(true);
    for (const MenuEntry &entry : entries) {
        if (!entry.entries.isEmpty()) {
            fill(*menu.addMenu(entry.title), entry.entries);
            continue;
        }
        if (!entry.action) {
            menu.addSeparator();
            continue;
        }
        QAction *action = menu.addAction(entry.title, entry.action);
        action->setCheckable(entry.checked.has_value());
        action->setChecked(entry.checked.value_or(false));
        action->setEnabled(entry.enabled);
        action->setToolTip(entry.toolTip);
    }
}

} // namespace nubble
