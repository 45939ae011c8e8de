#include "Widgets/MenuEntry.h"

#include <algorithm>
#include <tuple>

namespace nubble {

bool lookAlike(const QList<MenuEntry> &menu, const QList<MenuEntry> &other)
{
    const auto look = [](const MenuEntry &entry) {
        return std::tie(
            entry.title, entry.detail, entry.checked, entry.enabled, entry.toolTip, entry.shortcut);
    };
    return std::equal(
        menu.begin(), menu.end(), other.begin(), other.end(),
        [&look](const MenuEntry &a, const MenuEntry &b) {
            return look(a) == look(b) && lookAlike(a.entries, b.entries);
        });
}

} // namespace nubble
