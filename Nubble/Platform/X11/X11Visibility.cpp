#include "Platform/X11/X11Visibility.h"

#include <QCoreApplication>

#include <xcb/screensaver.h>

#include "Platform/X11/X11Connection.h"

namespace nubble {

X11Visibility::X11Visibility(std::shared_ptr<const X11Connection> x11) : m_x11(std::move(x11))
{
    watchScreenSaver();
    QCoreApplication::instance()->installNativeEventFilter(this);
}

void X11Visibility::watchScreenSaver()
{
    xcb_connection_t *connection = m_x11->get();
    if (!m_x11->offers(xcb_screensaver_id))
        return;
    m_firstEvent = xcb_get_extension_data(connection, &xcb_screensaver_id)->first_event;
    m_x11->ignoreErrors(
        xcb_screensaver_select_input_checked(connection, m_x11->root(), XCB_SCREENSAVER_EVENT_NOTIFY_MASK));
    const XcbReply<xcb_screensaver_query_info_reply_t> now(xcb_screensaver_query_info_reply(
        connection, xcb_screensaver_query_info(connection, m_x11->root()), nullptr));
    m_isScreenBlank = now && now->state == XCB_SCREENSAVER_STATE_ON;
}

void X11Visibility::watch(xcb_window_t window)
{
    if (m_window == window)
        return;
    m_window = window;
    set(m_isCovered, false);
    xcb_connection_t *connection = m_x11->get();
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, window), nullptr));
    if (!attributes)
        return;
    const uint32_t events = attributes->your_event_mask | XCB_EVENT_MASK_VISIBILITY_CHANGE; // Qt has its own
    m_x11->ignoreErrors(xcb_change_window_attributes_checked(connection, window, XCB_CW_EVENT_MASK, &events));
}

bool X11Visibility::nativeEventFilter(const QByteArray &type, void *message, qintptr *)
{
    if (type != "xcb_generic_event_t")
        return false;
    const auto kind = static_cast<const xcb_generic_event_t *>(message)->response_type & 0x7f;
    if (kind == XCB_VISIBILITY_NOTIFY) {
        const auto *event = static_cast<const xcb_visibility_notify_event_t *>(message);
        if (event->window == m_window)
            set(m_isCovered, event->state == XCB_VISIBILITY_FULLY_OBSCURED);
    } else if (m_firstEvent && kind == m_firstEvent + XCB_SCREENSAVER_NOTIFY) {
        const auto *event = static_cast<const xcb_screensaver_notify_event_t *>(message);
        set(m_isScreenBlank,
            event->state == XCB_SCREENSAVER_STATE_ON || event->state == XCB_SCREENSAVER_STATE_CYCLE);
    }
    return false;
}

void X11Visibility::set(bool &value, bool now)
{
    if (std::exchange(value, now) != now)
        Q_EMIT changed();
}

} // namespace nubble
