#pragma once

#include <QString>
#include <QStringView>

#include <array>

#include "Shell/Addon.h"

namespace nubble {

// What one of the key combinations does that work everywhere on the desktop.
enum class HotKey { Search, Ask, Screenshot };

struct HotKeyBinding {
    HotKey key = HotKey::Search;
    Addon addon = Addon::Search; // which must be active
    QKeyCombination keys;
    QStringView action; // for scripts
};

// All of them, in the order in which they are registered.
inline constexpr std::array hotKeyBindings{
    HotKeyBinding{HotKey::Search, Addon::Search, Qt::CTRL | Qt::ALT | Qt::Key_Space, u"search"},
    HotKeyBinding{HotKey::Ask, Addon::Ask, Qt::CTRL | Qt::ALT | Qt::Key_A, u"ask"},
    HotKeyBinding{HotKey::Screenshot, Addon::Ask, Qt::CTRL | Qt::ALT | Qt::Key_S, u"screenshot"},
};

[[nodiscard]] QKeyCombination keysOf(HotKey key);
[[nodiscard]] QString keysText(HotKey key); // as this desktop writes them: "Ctrl+Alt+Space"
[[nodiscard]] QString actionName(HotKey key);

} // namespace nubble
