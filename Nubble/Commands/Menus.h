#pragma once

#include <QMap>

#include "Placement/NotchEdge.h"
#include "Shell/Addon.h"
#include "Widgets/MenuEntry.h"

namespace nubble {

class AppCommands;

// What the menus say about the program, taken when one is opened.
struct MenuState {
    NotchEdge edge = NotchEdge::Right;
    bool locked = false;
    bool visible = true;
    bool notifies = true; // by the desktop's notices
    ActiveAddons addons;
    QMap<Addon, QString> missing; // what an add-on lacks on this machine
};

// The menus as plain values. `commands` must live as long as their actions.
[[nodiscard]] QList<MenuEntry> statusMenu(const MenuState &state, AppCommands &commands); // the tray icon's
[[nodiscard]] QList<MenuEntry> notchMenu(const MenuState &state, AppCommands &commands);  // the panel's own

} // namespace nubble
