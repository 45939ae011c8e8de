#pragma once

#include <QAbstractNativeEventFilter>

#include <memory>
#include <optional>
#include <vector>

#include "Platform/HotKeyService.h"
#include "Platform/X11/X11KeyMap.h"

namespace nubble {

class X11Connection;

// Passive grabs of keys, whatever locks are on. They follow the keys that carry the symbols from one layout
// to another.
class X11HotKeys : public HotKeyService, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit X11HotKeys(std::shared_ptr<const X11Connection> x11);
    ~X11HotKeys() override;

    bool grab(quint32 id, QKeyCombination keys) override;
    [[nodiscard]] bool isGrabbed(quint32 id) const override;

private:
    struct Grab {
        std::vector<xcb_keycode_t> codes;
        uint8_t modifiers = 0;
        uint8_t locks = 0; // which may be on besides

        bool operator==(const Grab &) const = default;
    };
    struct HotKey {
        quint32 id = 0;
        QKeyCombination keys;
        Grab grab;
        bool isOurs = false;
        bool isDown = false;
        std::optional<xcb_timestamp_t> lastEvent = std::nullopt; // a press or a release
    };

    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void keyPressed(const xcb_key_press_event_t &event);
    void keyReleased(const xcb_key_release_event_t &event);
    [[nodiscard]] bool isOfLayout(const xcb_generic_event_t &event) const;
    void followLayoutSoon();
    void followLayout();
    [[nodiscard]] Grab grabFor(QKeyCombination keys) const;
    [[nodiscard]] bool take(const Grab &grab) const; // all of it or nothing
    void release(const Grab &grab) const;

    std::shared_ptr<const X11Connection> m_x11;
    std::optional<X11KeyMap> m_map; // since the first grab
    uint8_t m_layoutEvent = 0;      // of the keyboard extension
    std::vector<HotKey> m_hotKeys;
    bool m_willFollow = false;
};

} // namespace nubble
