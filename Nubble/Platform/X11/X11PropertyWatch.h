#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <memory>
#include <vector>
#include <xcb/xcb.h>

namespace nubble {

class X11Connection;
enum class X11Atom;

// Tells of changes of a window's properties, for events of which somebody has asked already: of the root
// window, on which window managers publish their state, Qt has. Main thread only.
class X11PropertyWatch : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    // Of the root window, until another is named.
    X11PropertyWatch(std::shared_ptr<const X11Connection> x11, const std::vector<X11Atom> &properties);

    void setWindow(xcb_window_t window) { m_window = window; }

Q_SIGNALS:
    void changed(); // any of them, perhaps to the same value

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;

    std::shared_ptr<const X11Connection> m_x11;
    std::vector<xcb_atom_t> m_properties;
    xcb_window_t m_window;
};

} // namespace nubble
