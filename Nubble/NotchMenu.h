#pragma once

#include <QList>
#include <QString>

#include <functional>

#include "Panel/NotchEdge.h"
#include "Shell/Addon.h"

class QMenu;

namespace nubble {

class AppCommands;

// An entry of a menu as a plain value; one without an action and without entries of its own is a separator.
struct MenuEntry {
    QString title;
    std::function<void()> action;
    std::optional<bool> checked; // none: cannot be checked
    bool enabled = true;
    QString toolTip;
    QList<MenuEntry> entries;
};

// What the menus say about the program, taken when one is opened.
struct MenuState {
    NotchEdge edge = NotchEdge::Right;
    bool locked = false;
    ActiveAddons addons;
};

// The panel's context menu.
[[nodiscard]] QList<MenuEntry> notchMenu(const MenuState &state, AppCommands &commands);

// Fills `menu` with the entries.
void fill(QMenu &menu, const QList<MenuEntry> &entries);

} // namespace nubble
