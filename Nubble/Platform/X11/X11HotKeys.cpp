#include "Platform/X11/X11HotKeys.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

#include "Platform/X11/X11Connection.h"
#include "Platform/X11/XcbXkb.h"

namespace nubble {

namespace {

constexpr int realModifiers = 0xff;
constexpr xcb_keysym_t firstFunctionKey = 0xffbe;
// In milliseconds. A key that seems to be held for longer without repeating was released unseen.
constexpr xcb_timestamp_t longestRepeat = 2000;

xcb_keysym_t symbolOf(Qt::Key key)
{
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35)
        return firstFunctionKey + static_cast<xcb_keysym_t>(key - Qt::Key_F1);
    const bool isLatin1 = key >= Qt::Key_Space && key <= Qt::Key_ydiaeresis;
    return isLatin1 ? QChar(key).toLower().unicode() : xcb_keysym_t{XCB_NO_SYMBOL};
}

// With every combination of locks.
template <typename Do> void forEachState(uint8_t modifiers, uint8_t locks, Do act)
{
    for (int some = locks;; some = (some - 1) & locks) {
        act(static_cast<uint16_t>(modifiers | some));
        if (some == 0)
            return;
    }
}

} // namespace

X11HotKeys::X11HotKeys(std::shared_ptr<const X11Connection> x11) : m_x11(std::move(x11)) { }

X11HotKeys::~X11HotKeys()
{
    for (const HotKey &each : m_hotKeys)
        if (each.isOurs)
            release(each.grab);
    m_x11->flush();
}

bool X11HotKeys::grab(quint32 id, QKeyCombination keys)
{
    if (!m_map) {
        m_map = X11KeyMap::read(*m_x11);
        if (!m_map)
            return false;
        m_layoutEvent = xcb_get_extension_data(m_x11->get(), &xcb_xkb_id)->first_event;
        QCoreApplication::instance()->installNativeEventFilter(this);
    }
    HotKey &added = m_hotKeys.emplace_back(HotKey{.id = id, .keys = keys, .grab = grabFor(keys)});
    added.isOurs = take(added.grab);
    return added.isOurs;
}

bool X11HotKeys::isGrabbed(quint32 id) const
{
    return std::ranges::any_of(m_hotKeys, [id](const HotKey &each) { return each.id == id && each.isOurs; });
}

// What was sent by another program has a bit more in its type, and is not heeded.
bool X11HotKeys::nativeEventFilter(const QByteArray &type, void *message, qintptr *)
{
    if (type != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if (event->response_type == XCB_KEY_PRESS)
        keyPressed(*static_cast<const xcb_key_press_event_t *>(message));
    else if (event->response_type == XCB_KEY_RELEASE)
        keyReleased(*static_cast<const xcb_key_release_event_t *>(message));
    else if (isOfLayout(*event))
        followLayoutSoon();
    return false; // Qt learns the time from it
}

// A held key repeats as a press, or as a release and a press at the same moment, as the toolkit has chosen.
void X11HotKeys::keyPressed(const xcb_key_press_event_t &event)
{
    if (event.event != m_x11->root())
        return;
    for (HotKey &each : m_hotKeys) {
        const bool isIt = each.isOurs && std::ranges::count(each.grab.codes, event.detail) > 0
            && (event.state & realModifiers & ~each.grab.locks) == each.grab.modifiers;
        if (!isIt)
            continue;
        const bool repeats =
            each.isDown ? event.time - *each.lastEvent < longestRepeat : each.lastEvent == event.time;
        each.isDown = true;
        each.lastEvent = event.time;
        if (!repeats)
            Q_EMIT pressed(each.id);
        return;
    }
}

// The modifiers may have been released before, and a window of ours may have got the keyboard meanwhile.
void X11HotKeys::keyReleased(const xcb_key_release_event_t &event)
{
    for (HotKey &each : m_hotKeys)
        if (each.isDown && std::ranges::count(each.grab.codes, event.detail) > 0) {
            each.isDown = false;
            each.lastEvent = event.time;
        }
}

// Qt follows the layouts, too, and has asked for these events.
bool X11HotKeys::isOfLayout(const xcb_generic_event_t &event) const
{
    if (event.response_type == XCB_MAPPING_NOTIFY)
        return true;
    if (event.response_type != m_layoutEvent)
        return false;
    switch (event.pad0) { // its kind within the extension
    case XCB_XKB_NEW_KEYBOARD_NOTIFY:
    case XCB_XKB_MAP_NOTIFY:
        return true;
    case XCB_XKB_STATE_NOTIFY:
        return reinterpret_cast<const xcb_xkb_state_notify_event_t &>(event).group != m_map->layout();
    default:
        return false;
    }
}

// A change of the layout comes in several events.
void X11HotKeys::followLayoutSoon()
{
    if (std::exchange(m_willFollow, true))
        return;
    QMetaObject::invokeMethod(this, &X11HotKeys::followLayout, Qt::QueuedConnection);
}

void X11HotKeys::followLayout()
{
    m_willFollow = false;
    if (const auto map = X11KeyMap::read(*m_x11))
        m_map = map;
    std::vector<HotKey *> changed;
    for (HotKey &each : m_hotKeys) {
        const Grab grab = grabFor(each.keys);
        if (each.isOurs && grab == each.grab)
            continue;
        if (each.isOurs)
            release(each.grab);
        each.grab = grab;
        each.isDown = false;
        changed.push_back(&each);
    }
    // Only now: one combination may be where another was.
    for (HotKey *each : changed)
        each->isOurs = take(each->grab);
    m_x11->flush();
}

X11HotKeys::Grab X11HotKeys::grabFor(QKeyCombination keys) const
{
    const xcb_keysym_t symbol = symbolOf(keys.key());
    int modifiers = 0;
    for (const auto &[qtModifier, modifier] :
         {std::pair<Qt::KeyboardModifier, int>{Qt::ShiftModifier, XCB_MOD_MASK_SHIFT},
          {Qt::ControlModifier, XCB_MOD_MASK_CONTROL},
          {Qt::AltModifier, m_map->alt()},
          {Qt::MetaModifier, m_map->super()}})
        if (keys.keyboardModifiers() & qtModifier)
            modifiers |= modifier;
    return {
        .codes = symbol == XCB_NO_SYMBOL ? std::vector<xcb_keycode_t>() : m_map->keysWith(symbol),
        .modifiers = static_cast<uint8_t>(modifiers),
        .locks = m_map->locks()};
}

bool X11HotKeys::take(const Grab &grab) const
{
    std::vector<xcb_void_cookie_t> requests;
    for (const xcb_keycode_t code : grab.codes)
        forEachState(grab.modifiers, grab.locks, [&](uint16_t state) {
            requests.push_back(xcb_grab_key_checked(
                m_x11->get(), 0, m_x11->root(), state, code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        });
    bool isOurs = !requests.empty();
    for (const xcb_void_cookie_t request : requests) {
        const XcbReply<xcb_generic_error_t> error(xcb_request_check(m_x11->get(), request));
        isOurs = isOurs && !error;
    }
    if (!isOurs)
        release(grab);
    return isOurs;
}

void X11HotKeys::release(const Grab &grab) const
{
    for (const xcb_keycode_t code : grab.codes)
        forEachState(grab.modifiers, grab.locks, [&](uint16_t state) {
            m_x11->ignoreErrors(xcb_ungrab_key_checked(m_x11->get(), code, m_x11->root(), state));
        });
}

} // namespace nubble
