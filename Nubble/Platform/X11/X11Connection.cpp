#include "Platform/X11/X11Connection.h"

#include <QGuiApplication>

#include <cstring>
#include <string_view>
#include <utility>
#include <xcb/randr.h>

namespace nubble {

namespace {

constexpr std::array<const char *, static_cast<size_t>(X11Atom::Count)> atomNames{
    "_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST", "_NET_CLIENT_LIST_STACKING", "_NET_CURRENT_DESKTOP",
    "_NET_RESTACK_WINDOW", "_NET_SUPPORTED", "_NET_SUPPORTING_WM_CHECK", "_NET_WM_DESKTOP", "_NET_WM_NAME",
    "_NET_WM_PID", "_NET_WM_STATE", "_NET_WM_STATE_HIDDEN", "_NET_WM_STATE_ABOVE", "_NET_WM_STATE_STICKY",
    "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER", "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_DIALOG", "_NET_WM_WINDOW_TYPE_NORMAL", "_NET_SYSTEM_TRAY_COLORS",
    "_GTK_WORKAREAS_D0", "_NUBBLE_TIME", "_XSETTINGS_SETTINGS",
    // followed by the screen's number
    "_NET_WM_CM_S", "_NET_SYSTEM_TRAY_S", "_XSETTINGS_S"};

bool isOfScreen(X11Atom atom)
{
    return atom >= X11Atom::CompositingManager;
}

int preferredScreen()
{
    char *host = nullptr;
    int display = 0;
    int screen = 0;
    const bool known = xcb_parse_display(nullptr, &host, &display, &screen) != 0;
    std::free(host);
    return known ? screen : 0;
}

xcb_screen_t *screenAt(xcb_connection_t *connection, int number)
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    while (number > 0 && screens.rem > 1) {
        xcb_screen_next(&screens);
        --number;
    }
    return screens.rem > 0 ? screens.data : nullptr;
}

} // namespace

bool X11Connection::isServerThere()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        return false;
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const bool reached = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return reached;
}

std::shared_ptr<const X11Connection> X11Connection::ofThisProgram()
{
    const auto *application =
        qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    xcb_connection_t *connection = application ? application->connection() : nullptr;
    if (!connection || xcb_connection_has_error(connection))
        return nullptr;
    const int number = preferredScreen();
    xcb_screen_t *screen = screenAt(connection, number);
    return screen ? std::shared_ptr<const X11Connection>(new X11Connection(connection, screen, number))
                  : nullptr;
}

X11Connection::X11Connection(xcb_connection_t *connection, xcb_screen_t *screen, int screenNumber)
    : m_connection(connection), m_screen(screen)
{
    std::array<xcb_intern_atom_cookie_t, atomNames.size()> cookies{};
    for (size_t i = 0; i < atomNames.size(); ++i) {
        QByteArray name = atomNames[i];
        if (isOfScreen(static_cast<X11Atom>(i)))
            name += QByteArray::number(screenNumber);
        cookies[i] = xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.constData());
    }
    for (size_t i = 0; i < cookies.size(); ++i) {
        const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookies[i], nullptr));
        m_atoms[i] = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
    m_isXwayland = looksLikeXwayland();
}

// Newer servers have an extension that says so, older ones name their screens after it.
bool X11Connection::looksLikeXwayland() const
{
    constexpr std::string_view name("XWAYLAND");
    const XcbReply<xcb_query_extension_reply_t> extension(xcb_query_extension_reply(
        m_connection, xcb_query_extension(m_connection, name.size(), name.data()), nullptr));
    if (extension && extension->present)
        return true;
    if (!offers(xcb_randr_id))
        return false;
    const XcbReply<xcb_randr_get_screen_resources_current_reply_t> resources(
        xcb_randr_get_screen_resources_current_reply(
            m_connection, xcb_randr_get_screen_resources_current(m_connection, root()), nullptr));
    if (!resources || resources->num_outputs == 0)
        return false;
    const xcb_randr_output_t first = *xcb_randr_get_screen_resources_current_outputs(resources.get());
    const XcbReply<xcb_randr_get_output_info_reply_t> output(xcb_randr_get_output_info_reply(
        m_connection, xcb_randr_get_output_info(m_connection, first, XCB_CURRENT_TIME), nullptr));
    return output
        && std::string_view(
               reinterpret_cast<const char *>(xcb_randr_get_output_info_name(output.get())),
               static_cast<size_t>(xcb_randr_get_output_info_name_length(output.get())))
               .starts_with(name);
}

bool X11Connection::offers(xcb_extension_t &extension) const
{
    const auto *answer = xcb_get_extension_data(m_connection, &extension);
    return answer && answer->present;
}

void X11Connection::askWindowManager(
    xcb_window_t window, X11Atom message, const std::array<uint32_t, 5> &data) const
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(message);
    std::memcpy(event.data.data32, data.data(), sizeof event.data.data32);
    xcb_send_event(
        m_connection, 0, root(), XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
        reinterpret_cast<const char *>(&event));
}

X11Property::X11Property(
    const X11Connection &connection, xcb_window_t window, xcb_atom_t name, uint32_t maximumWords)
    : m_connection(connection.get()),
      m_cookie(xcb_get_property(m_connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, maximumWords))
{
}

X11Property::X11Property(X11Property &&other) noexcept
    : m_connection(std::exchange(other.m_connection, nullptr)), m_cookie(other.m_cookie)
{
}

X11Property::~X11Property()
{
    if (m_connection)
        xcb_discard_reply(m_connection, m_cookie.sequence);
}

XcbReply<xcb_get_property_reply_t> X11Property::take(uint8_t format)
{
    xcb_connection_t *connection = std::exchange(m_connection, nullptr);
    if (!connection)
        return nullptr;
    XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, m_cookie, nullptr));
    return reply && reply->format == format ? std::move(reply) : nullptr;
}

std::vector<uint32_t> X11Property::numbers()
{
    const auto reply = take(32);
    if (!reply)
        return {};
    const auto *first = static_cast<const uint32_t *>(xcb_get_property_value(reply.get()));
    return {first, first + xcb_get_property_value_length(reply.get()) / 4};
}

QByteArray X11Property::text()
{
    const auto reply = take(8);
    if (!reply)
        return {};
    return {
        static_cast<const char *>(xcb_get_property_value(reply.get())),
        xcb_get_property_value_length(reply.get())};
}

} // namespace nubble
