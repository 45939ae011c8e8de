#include "Platform/X11/X11PropertyWatch.h"

#include <QCoreApplication>

#include <algorithm>

#include "Platform/X11/X11Connection.h"

namespace nubble {

X11PropertyWatch::X11PropertyWatch(
    std::shared_ptr<const X11Connection> x11, const std::vector<X11Atom> &properties)
    : m_x11(std::move(x11)), m_window(m_x11->root())
{
    for (const X11Atom each : properties)
        m_properties.push_back(m_x11->atom(each));
    QCoreApplication::instance()->installNativeEventFilter(this);
}

bool X11PropertyWatch::nativeEventFilter(const QByteArray &type, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_property_notify_event_t *>(message);
    if (type == "xcb_generic_event_t" && (event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY
        && event->window == m_window && std::ranges::count(m_properties, event->atom) > 0)
        Q_EMIT changed();
    return false;
}

} // namespace nubble
