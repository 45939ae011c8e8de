#include "Platform/X11/X11MouseMonitor.h"

#include <QGuiApplication>
#include <QWindow>

#include <xcb/xinput.h>

#include "Platform/X11/X11Connection.h"

namespace nubble {

namespace {

constexpr uint32_t leftButton = 1;
constexpr uint32_t rightButton = 3;

bool isOwnWindow(xcb_window_t window)
{
    const auto windows = QGuiApplication::allWindows();
    return std::any_of(windows.begin(), windows.end(), [window](const QWindow *each) {
        return each->handle() && each->winId() == window;
    });
}

} // namespace

X11MouseMonitor::X11MouseMonitor(std::shared_ptr<const X11Connection> x11) : m_x11(std::move(x11))
{
    if (!m_x11->offers(xcb_input_id))
        return;
    m_extension = xcb_get_extension_data(m_x11->get(), &xcb_input_id)->major_opcode;
    // Since version 2.1 raw events come also during the grabs of others.
    const auto version = xcb_input_xi_query_version(m_x11->get(), 2, 2);
    xcb_discard_reply(m_x11->get(), version.sequence);
    select(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS);
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11MouseMonitor::~X11MouseMonitor()
{
    if (m_extension)
        select(0);
}

void X11MouseMonitor::select(uint32_t events) const
{
    struct {
        xcb_input_event_mask_t head;
        uint32_t events;
    } const mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, events};
    m_x11->ignoreErrors(xcb_input_xi_select_events_checked(m_x11->get(), m_x11->root(), 1, &mask.head));
    m_x11->flush();
}

bool X11MouseMonitor::nativeEventFilter(const QByteArray &type, void *message, qintptr *)
{
    if (type != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_ge_generic_event_t *>(message);
    if ((event->response_type & 0x7f) != XCB_GE_GENERIC || event->extension != m_extension
        || event->event_type != XCB_INPUT_RAW_BUTTON_PRESS)
        return false;
    const uint32_t button = static_cast<const xcb_input_raw_button_press_event_t *>(message)->detail;
    if ((button == leftButton || button == rightButton) && !isPointerOverOwnWindow())
        Q_EMIT pressedElsewhere();
    return false;
}

// Raw events name no window, so it is asked for; the answer respects the windows' input shapes. A managed
// window lies within the window manager's frame, hence the descent.
bool X11MouseMonitor::isPointerOverOwnWindow() const
{
    constexpr int deepestNesting = 32;
    xcb_window_t window = m_x11->root();
    for (int depth = 0; depth < deepestNesting; ++depth) {
        const XcbReply<xcb_query_pointer_reply_t> reply(
            xcb_query_pointer_reply(m_x11->get(), xcb_query_pointer(m_x11->get(), window), nullptr));
        if (!reply || reply->child == XCB_WINDOW_NONE)
            return false;
        window = reply->child;
        if (isOwnWindow(window))
            return true;
    }
    return false;
}

} // namespace nubble
