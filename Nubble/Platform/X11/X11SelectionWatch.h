#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <memory>
#include <xcb/xcb.h>

namespace nubble {

class X11Connection;
enum class X11Atom;

// Knows who owns one of the selections by which the helpers of a desktop announce themselves, such as the
// compositing manager and the tray. Main thread only.
class X11SelectionWatch : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    X11SelectionWatch(std::shared_ptr<const X11Connection> x11, X11Atom selection);

    [[nodiscard]] bool isOwned() const { return m_owner != XCB_WINDOW_NONE; }
    [[nodiscard]] xcb_window_t owner() const { return m_owner; }

Q_SIGNALS:
    void changed();

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void setOwner(xcb_window_t owner);

    std::shared_ptr<const X11Connection> m_x11;
    xcb_atom_t m_selection;
    uint8_t m_firstEvent = 0; // of the XFixes extension; 0 without it
    xcb_window_t m_owner = XCB_WINDOW_NONE;
};

} // namespace nubble
