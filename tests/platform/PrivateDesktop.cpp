#include "platform/PrivateDesktop.h"

#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>

namespace nubble {

namespace {

constexpr int announcementDescriptor = 3;

QByteArray readLine(int descriptor)
{
    QByteArray line;
    char byte = 0;
    while (::read(descriptor, &byte, 1) == 1 && byte != '\n')
        line.append(byte);
    return line;
}

[[noreturn]] void execute(const QList<QByteArray> &command, int announcement)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::dup2(announcement, announcementDescriptor); // the copy, unlike the original, survives exec
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int standard : {0, 1, 2})
        ::dup2(nowhere, standard);
    std::vector<char *> arguments;
    for (const QByteArray &each : command)
        arguments.push_back(const_cast<char *>(each.constData()));
    arguments.push_back(nullptr);
    ::execvp(arguments[0], arguments.data());
    ::_exit(127);
}

xcb_atom_t atom(xcb_connection_t *connection, const QByteArray &name)
{
    const auto request = xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.constData());
    auto *reply = xcb_intern_atom_reply(connection, request, nullptr);
    const xcb_atom_t result = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(reply);
    return result;
}

bool hasProperty(xcb_connection_t *connection, xcb_window_t window, xcb_atom_t name)
{
    const auto request = xcb_get_property(connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, 1);
    auto *reply = xcb_get_property_reply(connection, request, nullptr);
    const bool present = reply && reply->type != XCB_ATOM_NONE;
    std::free(reply);
    return present;
}

// Openbox overlooks windows that are shown while it starts, whatever it has announced by then. So one is
// shown again and again until it is looked after.
void waitForWindowManager()
{
    constexpr int mostTries = 200;
    constexpr useconds_t pause = 50'000;
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const xcb_atom_t managed = atom(connection, "WM_STATE");
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(
        connection, XCB_COPY_FROM_PARENT, window, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
        XCB_COPY_FROM_PARENT, 0, nullptr);
    int tries = 0;
    for (; tries < mostTries && !hasProperty(connection, window, managed); ++tries) {
        xcb_unmap_window(connection, window);
        xcb_map_window(connection, window);
        xcb_flush(connection);
        ::usleep(pause);
    }
    if (tries == mostTries)
        qFatal("openbox does not start");
    xcb_disconnect(connection);
}

} // namespace

ChildProgram::ChildProgram(const QList<QByteArray> &command, QByteArray *announced) : m_pid(-1)
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0 || (m_pid = ::fork()) < 0)
        qFatal("cannot start %s", command.first().constData());
    if (m_pid == 0)
        execute(command, ends[1]);
    ::close(ends[1]);
    if (announced)
        *announced = readLine(ends[0]);
    ::close(ends[0]);
}

ChildProgram::~ChildProgram()
{
    ::kill(m_pid, SIGTERM);
    ::waitpid(m_pid, nullptr, 0);
}

PrivateDesktop::PrivateDesktop()
{
    QByteArray number;
    m_server = std::make_unique<ChildProgram>(
        QList<QByteArray>{
            "Xvfb", "-displayfd", "3", "-screen", "0", "1280x800x24", "-dpi", "96", "-nolisten", "tcp",
            "-noreset"},
        &number);
    if (number.isEmpty())
        qFatal("Xvfb does not start");
    m_display = ':' + number;
    qputenv("DISPLAY", m_display);
    qputenv("QT_QPA_PLATFORM", "xcb");
    m_windowManager = std::make_unique<ChildProgram>(QList<QByteArray>{"openbox", "--sm-disable"});
    waitForWindowManager();
}

PrivateSessionBus::PrivateSessionBus()
{
    m_daemon = std::make_unique<ChildProgram>(
        QList<QByteArray>{"dbus-daemon", "--session", "--nofork", "--print-address=3"}, &m_address);
    if (m_address.isEmpty())
        qFatal("dbus-daemon does not start");
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_address);
}

} // namespace nubble
