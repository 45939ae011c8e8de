#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

namespace nubble {

// An entry of a menu as a plain value.
struct MenuEntry {
    QString title = {};                // none: a separator
    QString detail = {};               // a second, smaller line
    std::function<void()> action = {}; // none: only to be read, or to open the entries below it
    std::optional<bool> checked = {};  // none: cannot be checked
    bool enabled = true;
    QString toolTip = {};
    QKeySequence shortcut = {}; // works while the menu is open
    QList<MenuEntry> entries = {};

    [[nodiscard]] static MenuEntry separator() { return {}; }
};

// Whether two menus are shown the same, whatever their entries do.
[[nodiscard]] bool lookAlike(const QList<MenuEntry> &menu, const QList<MenuEntry> &other);

} // namespace nubble
