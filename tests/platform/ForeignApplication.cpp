#include "platform/ForeignApplication.h"

#include <QProcess>
#include <QTest>

#include <cstring>

#include "Platform/X11/X11Connection.h"

namespace nubble {

namespace {

void run(const QString &program, const QStringList &arguments)
{
    if (QProcess::execute(program, arguments) != 0)
        qFatal("%s failed", qPrintable(program));
}

} // namespace

ForeignApplication::ForeignApplication(uint32_t pid)
    : m_connection(xcb_connect(nullptr, nullptr)),
      m_root(xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root), m_pid(pid)
{
}

ForeignApplication::~ForeignApplication()
{
    xcb_disconnect(m_connection);
}

void ForeignApplication::awaitServer() const
{
    (void)focusedWindow();
}

xcb_atom_t ForeignApplication::atom(const char *name) const
{
    const auto request = xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(std::strlen(name)), name);
    return XcbReply<xcb_intern_atom_reply_t>(xcb_intern_atom_reply(m_connection, request, nullptr))->atom;
}

xcb_window_t ForeignApplication::open(const QRect &pixels, const QColor &colour, Kind kind)
{
    const xcb_window_t window = xcb_generate_id(m_connection);
    const std::array<uint32_t, 3> values{
        colour.rgb() & 0xFFFFFF, kind == Unmanaged,
        XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(
        m_connection, XCB_COPY_FROM_PARENT, window, m_root, static_cast<int16_t>(pixels.x()),
        static_cast<int16_t>(pixels.y()), static_cast<uint16_t>(pixels.width()),
        static_cast<uint16_t>(pixels.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
        XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    setNumbers(window, "_NET_WM_PID", {m_pid});
    setText(window, "WM_CLASS", QByteArray("terminal\0Terminal\0", 18));
    // No decoration, and a position of the user's choice: the window lies exactly there.
    setNumbers(window, "_MOTIF_WM_HINTS", {2, 0, 0, 0, 0}, "_MOTIF_WM_HINTS");
    std::vector<uint32_t> sizeHints(18);
    sizeHints[0] = 1; // the user's position
    setNumbers(window, "WM_NORMAL_HINTS", sizeHints, "WM_SIZE_HINTS");
    if (kind == Dock)
        setNumbers(window, "_NET_WM_WINDOW_TYPE", {atom("_NET_WM_WINDOW_TYPE_DOCK")}, "ATOM");
    xcb_map_window(m_connection, window);
    const auto listed = [&] {
        const auto list = numbers(m_root, "_NET_CLIENT_LIST");
        return kind == Unmanaged || std::find(list.begin(), list.end(), window) != list.end();
    };
    if (!QTest::qWaitFor([&] { return isViewable(window) && listed(); }))
        qFatal("a foreign window does not appear");
    return window;
}

void ForeignApplication::destroy(xcb_window_t window)
{
    xcb_destroy_window(m_connection, window);
    awaitServer();
}

void ForeignApplication::setNumbers(
    xcb_window_t window, const char *property, const std::vector<uint32_t> &values, const char *type)
{
    xcb_change_property(
        m_connection, XCB_PROP_MODE_REPLACE, window, atom(property), atom(type), 32,
        static_cast<uint32_t>(values.size()), values.data());
    awaitServer();
}

void ForeignApplication::setText(xcb_window_t window, const char *property, const QByteArray &value)
{
    xcb_change_property(
        m_connection, XCB_PROP_MODE_REPLACE, window, atom(property), XCB_ATOM_STRING, 8,
        static_cast<uint32_t>(value.size()), value.constData());
    awaitServer();
}

std::vector<uint32_t> ForeignApplication::numbers(xcb_window_t window, const char *property) const
{
    const auto request =
        xcb_get_property(m_connection, 0, window, atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, 1024);
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection, request, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto *first = static_cast<const uint32_t *>(xcb_get_property_value(reply.get()));
    return {first, first + xcb_get_property_value_length(reply.get()) / 4};
}

void ForeignApplication::focus(xcb_window_t window)
{
    run(QStringLiteral("wmctrl"), {QStringLiteral("-ia"), QString::number(window)});
    if (!QTest::qWaitFor([&] { return focusedWindow() == window; }))
        qFatal("a foreign window cannot be focused");
}

int ForeignApplication::presses()
{
    awaitServer();
    while (const auto event = XcbReply<xcb_generic_event_t>(xcb_poll_for_event(m_connection)))
        m_presses += (event->response_type & 0x7f) == XCB_BUTTON_PRESS;
    return m_presses;
}

xcb_window_t ForeignApplication::focusedWindow() const
{
    return XcbReply<xcb_get_input_focus_reply_t>(
               xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr))
        ->focus;
}

bool ForeignApplication::isViewable(xcb_window_t window) const
{
    const XcbReply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        m_connection, xcb_get_window_attributes(m_connection, window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

QRect ForeignApplication::onScreen(xcb_window_t window) const
{
    const XcbReply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, window), nullptr));
    const XcbReply<xcb_translate_coordinates_reply_t> position(xcb_translate_coordinates_reply(
        m_connection, xcb_translate_coordinates(m_connection, window, m_root, 0, 0), nullptr));
    return size && position ? QRect(position->dst_x, position->dst_y, size->width, size->height) : QRect();
}

void userClicks(const QPoint &pixel)
{
    const QStringList place{QString::number(pixel.x()), QString::number(pixel.y())};
    run(QStringLiteral("xdotool"),
        QStringList{QStringLiteral("mousemove")} + place
            + QStringList{QStringLiteral("click"), QStringLiteral("1")});
}

} // namespace nubble
