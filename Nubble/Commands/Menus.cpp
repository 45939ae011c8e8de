#include "Commands/Menus.h"

#include "Commands/AppCommands.h"
#include "Shell/HotKeyTable.h"

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

MenuEntry entry(const QString &title, QKeyCombination keys, const std::function<void()> &action)
{
    MenuEntry keyed = entry(title, action);
    keyed.shortcut = keys;
    return keyed;
}

MenuEntry submenu(const QString &title, const QList<MenuEntry> &entries)
{
    MenuEntry entry;
    entry.title = title;
    entry.entries = entries;
    return entry;
}

MenuEntry remark(const QString &text)
{
    MenuEntry entry;
    entry.title = text;
    entry.enabled = false;
    return entry;
}

MenuEntry edgeMenu(const MenuState &state, AppCommands &commands)
{
    QList<MenuEntry> entries;
    for (const NotchEdge edge : allEdges) {
        MenuEntry each = entry(title(edge), [&commands, edge] { commands.moveToEdge(edge); });
        each.checked = edge == state.edge;
        each.enabled = !state.locked;
        entries.append(each);
    }
    return submenu(u"Move to Edge"_s, entries);
}

MenuEntry centerEntry(const MenuState &state, AppCommands &commands)
{
    MenuEntry center = entry(u"Center on Edge"_s, [&commands] { commands.centerOnEdge(); });
    center.enabled = !state.locked;
    return center;
}

MenuEntry noticesEntry(const MenuState &state, AppCommands &commands)
{
    MenuEntry notices =
        entry(u"Notify Me"_s, [&commands, on = !state.notifies] { commands.setNotifying(on); });
    notices.checked = state.notifies;
    notices.toolTip = u"When a session waits for you, or has finished after a while"_s;
    return notices;
}

QList<MenuEntry> addonEntries(
    const std::array<Addon, 4> &order, const MenuState &state, AppCommands &commands)
{
    QList<MenuEntry> entries;
    for (const Addon addon : order) {
        MenuEntry each = entry(title(addon), [&commands, addon] { commands.toggleAddon(addon); });
        each.detail = state.missing.value(addon);
        each.checked = state.addons.contains(addon);
        each.toolTip = description(addon);
        entries.append(each);
    }
    return entries;
}

QList<MenuEntry> requestEntries(const MenuState &state, AppCommands &commands)
{
    using Action = AddonRequest::Action;
    QList<MenuEntry> entries;
    if (state.addons.contains(Addon::Search))
        entries.append(entry(u"Search Chats…"_s, keysOf(HotKey::Search), [&commands] {
            commands.request({Action::SearchChats});
        }));
    if (state.addons.contains(Addon::Ask))
        entries.append(entry(u"Ask Claude About Screen…"_s, keysOf(HotKey::Ask), [&commands] {
            commands.request({Action::AskClaude});
        }));
    if (!entries.isEmpty())
        entries.append(MenuEntry::separator());
    return entries;
}

} // namespace

QList<MenuEntry> statusMenu(const MenuState &state, AppCommands &commands)
{
    // What the entry says, whatever else may have changed while the menu was open.
    MenuEntry visible = state.visible ? entry(u"Hide Notch"_s, [&commands] { commands.hide(); })
                                      : entry(u"Show Notch"_s, [&commands] { commands.show(); });
    visible.checked = state.visible;
    MenuEntry locked =
        entry(u"Lock Position"_s, [&commands, lock = !state.locked] { commands.setLocked(lock); });
    locked.checked = state.locked;
    const QList<MenuEntry> switches = addonEntries(allAddons, state, commands)
        << MenuEntry::separator() << remark(u"Nubble restarts to add or remove one."_s);
    return requestEntries(state, commands)
        << visible << MenuEntry::separator() << locked << edgeMenu(state, commands)
        << centerEntry(state, commands) << MenuEntry::separator() << submenu(u"Add-ons"_s, switches)
        << noticesEntry(state, commands) << MenuEntry::separator()
        << entry(u"Refresh Everything"_s, Qt::CTRL | Qt::Key_R, [&commands] { commands.refreshAll(); })
        << entry(u"Restart Nubble"_s, [&commands] { commands.restart(); }) << MenuEntry::separator()
        << entry(u"Quit Nubble"_s, Qt::CTRL | Qt::Key_Q, [&commands] { commands.quit(); });
}

QList<MenuEntry> notchMenu(const MenuState &state, AppCommands &commands)
{
    constexpr std::array order{Addon::Ask, Addon::Search, Addon::Quenwick, Addon::Notes};
    return {
        entry(
            state.locked ? u"Unlock Position"_s : u"Lock Position"_s,
            [&commands, lock = !state.locked] { commands.setLocked(lock); }),
        edgeMenu(state, commands),
        centerEntry(state, commands),
        submenu(u"Add-ons"_s, addonEntries(order, state, commands)),
        noticesEntry(state, commands),
        entry(u"Refresh Everything"_s, [&commands] { commands.refreshAll(); }),
        entry(u"Restart Nubble"_s, [&commands] { commands.restart(); }),
        entry(u"Hide Notch"_s, [&commands] { commands.hide(); }),
        entry(u"Quit Nubble"_s, [&commands] { commands.quit(); }),
    };
}

} // namespace nubble
