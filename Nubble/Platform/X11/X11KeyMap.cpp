#include "Platform/X11/X11KeyMap.h"

#include <algorithm>

#include "Platform/X11/X11Connection.h"
#include "Platform/X11/XcbXkb.h"

namespace nubble {

namespace {

constexpr uint16_t wantedParts =
    XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_KEY_ACTIONS;

constexpr xcb_keysym_t altLeft = 0xffe9;
constexpr xcb_keysym_t altRight = 0xffea;
constexpr xcb_keysym_t superLeft = 0xffeb;
constexpr xcb_keysym_t superRight = 0xffec;

// Each key says by itself what it gives in layouts that it does not have.
uint8_t layoutWithin(const xcb_xkb_key_sym_map_t &key, uint8_t layout)
{
    const uint8_t count = key.groupInfo & 0x0f;
    if (layout < count || count == 0)
        return layout;
    if (key.groupInfo & XCB_XKB_GROUPS_WRAP_CLAMP_INTO_RANGE)
        return static_cast<uint8_t>(count - 1);
    if (key.groupInfo & XCB_XKB_GROUPS_WRAP_REDIRECT_INTO_RANGE) {
        const uint8_t other = (key.groupInfo >> 4) & 3;
        return other < count ? other : uint8_t{0};
    }
    return layout % count;
}

xcb_keysym_t plainSymbol(const xcb_xkb_key_sym_map_t &key, uint8_t layout)
{
    const size_t position = size_t{layoutWithin(key, layout)} * key.width;
    return position < key.nSyms ? xcb_xkb_key_sym_map_syms(&key)[position] : xcb_keysym_t{XCB_NO_SYMBOL};
}

// The parts of an answer, which they lie in.
xcb_xkb_get_map_map_t partsOf(const xcb_xkb_get_map_reply_t &reply)
{
    xcb_xkb_get_map_map_t parts{};
    xcb_xkb_get_map_map_unpack(
        xcb_xkb_get_map_map(&reply), reply.nTypes, reply.nKeySyms, reply.nKeyActions, reply.totalActions,
        reply.totalKeyBehaviors, reply.virtualMods, reply.totalKeyExplicit, reply.totalModMapKeys,
        reply.totalVModMapKeys, reply.present, &parts);
    return parts;
}

std::vector<X11Key> keysOf(const xcb_xkb_get_map_reply_t &reply, const xcb_xkb_get_map_map_t &parts)
{
    std::vector<X11Key> keys;
    xcb_keycode_t code = reply.firstKeySym;
    for (auto each = xcb_xkb_get_map_map_syms_rtrn_iterator(&reply, &parts); each.rem > 0;
         xcb_xkb_key_sym_map_next(&each), ++code) {
        X11Key &key = keys.emplace_back(X11Key{.code = code});
        uint8_t layout = 0;
        for (xcb_keysym_t &symbol : key.symbols)
            symbol = plainSymbol(*each.data, layout++);
    }
    for (uint8_t i = 0; i < reply.totalModMapKeys; ++i) {
        const xcb_xkb_key_mod_map_t &each = parts.modmap_rtrn[i];
        const auto key = std::ranges::find(keys, each.keycode, &X11Key::code);
        if (key != keys.end())
            key->modifiers = each.mods;
    }
    return keys;
}

uint8_t lockedBy(const xcb_xkb_action_t *actions, uint16_t count)
{
    uint8_t locked = XCB_MOD_MASK_LOCK;
    for (uint16_t i = 0; i < count; ++i)
        if (actions[i].type == XCB_XKB_SA_TYPE_LOCK_MODS)
            locked |= actions[i].lockmods.mask;
    return locked;
}

} // namespace

std::optional<X11KeyMap> X11KeyMap::read(const X11Connection &x11)
{
    xcb_connection_t *connection = x11.get();
    if (!x11.offers(xcb_xkb_id))
        return std::nullopt;
    const auto askedState = xcb_xkb_get_state(connection, XCB_XKB_ID_USE_CORE_KBD);
    const auto askedMap = xcb_xkb_get_map(
        connection, XCB_XKB_ID_USE_CORE_KBD, wantedParts, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    const XcbReply<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(connection, askedState, nullptr));
    const XcbReply<xcb_xkb_get_map_reply_t> reply(xcb_xkb_get_map_reply(connection, askedMap, nullptr));
    if (!state || !reply)
        return std::nullopt;
    const xcb_xkb_get_map_map_t parts = partsOf(*reply);
    X11KeyMap map;
    map.m_layout = state->group;
    map.m_keys = keysOf(*reply, parts);
    map.m_alt = map.modifiersOf({altLeft, altRight}, XCB_MOD_MASK_1);
    map.m_super = map.modifiersOf({superLeft, superRight}, XCB_MOD_MASK_4);
    // What makes a combination another one is never taken for a lock, whatever else locks it.
    const auto kept =
        static_cast<uint8_t>(XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | map.m_alt | map.m_super);
    map.m_locks = static_cast<uint8_t>(lockedBy(parts.acts_rtrn_acts, reply->totalActions) & ~kept);
    return map;
}

std::vector<xcb_keycode_t> X11KeyMap::keysWith(xcb_keysym_t symbol) const
{
    std::vector<xcb_keycode_t> codes;
    for (const size_t layout : {size_t{m_layout}, size_t{0}, size_t{1}, size_t{2}, size_t{3}}) {
        for (const X11Key &key : m_keys)
            if (layout < key.symbols.size() && key.symbols.at(layout) == symbol)
                codes.push_back(key.code);
        if (!codes.empty())
            break;
    }
    return codes;
}

uint8_t X11KeyMap::modifiersOf(std::array<xcb_keysym_t, 2> leftAndRight, uint8_t usualModifier) const
{
    for (const xcb_keysym_t symbol : leftAndRight)
        for (const X11Key &key : m_keys)
            if (key.modifiers != 0 && std::ranges::count(key.symbols, symbol) > 0)
                return key.modifiers;
    return usualModifier;
}

} // namespace nubble
