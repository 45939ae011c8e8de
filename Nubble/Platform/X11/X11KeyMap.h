#pragma once

#include <array>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

namespace nubble {

class X11Connection;

struct X11Key {
    xcb_keycode_t code = 0;
    uint8_t modifiers = 0;                 // that it sets
    std::array<xcb_keysym_t, 4> symbols{}; // that it gives alone in each layout that there can be
};

// The keyboard as it is laid out at the moment, as far as grabbing keys needs it. A plain value.
class X11KeyMap {
public:
    // None without the keyboard extension of the X server. Waits for the server once.
    [[nodiscard]] static std::optional<X11KeyMap> read(const X11Connection &x11);

    // The keys that give that symbol when nothing else is held: in the layout in use, or where that one has
    // no such symbol, as a Cyrillic one has no Latin letters, in the first that has it.
    [[nodiscard]] std::vector<xcb_keycode_t> keysWith(xcb_keysym_t symbol) const;

    [[nodiscard]] uint8_t alt() const { return m_alt; } // bits of the modifiers, as in an event's state
    [[nodiscard]] uint8_t super() const { return m_super; }
    [[nodiscard]] uint8_t locks() const { return m_locks; } // all those that a key locks
    [[nodiscard]] uint8_t layout() const { return m_layout; }

private:
    [[nodiscard]] uint8_t modifiersOf(std::array<xcb_keysym_t, 2> leftAndRight, uint8_t usualModifier) const;

    std::vector<X11Key> m_keys;
    uint8_t m_layout = 0;
    uint8_t m_alt = 0;
    uint8_t m_super = 0;
    uint8_t m_locks = 0;
};

} // namespace nubble
