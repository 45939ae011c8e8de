#include "Platform/X11/X11SelectionWatch.h"

#include <QCoreApplication>

#include <xcb/xfixes.h>

#include "Platform/X11/X11Connection.h"

namespace nubble {

X11SelectionWatch::X11SelectionWatch(std::shared_ptr<const X11Connection> x11, X11Atom selection)
    : m_x11(std::move(x11)), m_selection(m_x11->atom(selection))
{
    xcb_connection_t *connection = m_x11->get();
    const auto *extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (extension && extension->present) {
        m_firstEvent = extension->first_event;
        const auto version =
            xcb_xfixes_query_version(connection, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
        xcb_discard_reply(connection, version.sequence);
        // The same mask as Qt's own on this window: it is never taken away again, for Qt may go on needing
        // it.
        m_x11->ignoreErrors(xcb_xfixes_select_selection_input_checked(
            connection, m_x11->root(), m_selection,
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER
                | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY
                | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE));
    }
    const XcbReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, m_selection), nullptr));
    m_owner = owner ? owner->owner : xcb_window_t{XCB_WINDOW_NONE};
    QCoreApplication::instance()->installNativeEventFilter(this);
}

bool X11SelectionWatch::nativeEventFilter(const QByteArray &type, void *message, qintptr *)
{
    if (m_firstEvent == 0 || type != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if ((event->response_type & 0x7f) != m_firstEvent + XCB_XFIXES_SELECTION_NOTIFY)
        return false;
    const auto *notify = static_cast<const xcb_xfixes_selection_notify_event_t *>(message);
    if (notify->selection == m_selection)
        setOwner(notify->owner);
    return false;
}

void X11SelectionWatch::setOwner(xcb_window_t owner)
{
    if (m_owner == owner)
        return;
    m_owner = owner;
    Q_EMIT changed();
}

} // namespace nubble
