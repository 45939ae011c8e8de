#pragma once

#include <QByteArray>

#include <array>
#include <cstdlib>
#include <memory>
#include <vector>
#include <xcb/xcb.h>

namespace nubble {

struct FreeXcb {
    void operator()(void *reply) const { std::free(reply); }
};

// What an xcb_…_reply function returns, owned. Null when the server answered with an error, such as for a
// window that has gone meanwhile.
template <typename T> using XcbReply = std::unique_ptr<T, FreeXcb>;

enum class X11Atom {
    NetActiveWindow,
    NetClientList,
    NetClientListStacking,
    NetCurrentDesktop,
    NetRestackWindow,
    NetSupported,
    NetSupportingWmCheck,
    NetWmDesktop,
    NetWmName,
    NetWmPid,
    NetWmState,
    NetWmStateHidden,
    NetWmStateAbove,
    NetWmStateSticky,
    NetWmStateSkipTaskbar,
    NetWmStateSkipPager,
    NetWmWindowType,
    NetWmWindowTypeDialog,
    NetWmWindowTypeNormal,
    NetSystemTrayColors,
    GtkWorkAreas,
    Time, // ours, on which nothing is written
    Settings,
    CompositingManager, // the selection that one owns on this screen
    SystemTray,         // likewise, and so is the next
    SettingsManager,
    Count
};

// Qt's own connection to the X server, with the names that this backend needs. Main thread only.
class X11Connection {
public:
    // Whether the display that the environment names can be reached; Qt would end the program if not.
    [[nodiscard]] static bool isServerThere();

    // Null unless Qt runs on X11.
    [[nodiscard]] static std::shared_ptr<const X11Connection> ofThisProgram();

    [[nodiscard]] xcb_connection_t *get() const { return m_connection; }
    [[nodiscard]] const xcb_screen_t &screen() const { return *m_screen; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    // To be asked before any request of an extension: one that the server does not know ends the connection.
    [[nodiscard]] bool offers(xcb_extension_t &extension) const;

    // Whether the server's windows lie among those of a Wayland compositor.
    [[nodiscard]] bool isXwayland() const { return m_isXwayland; }

    [[nodiscard]] xcb_atom_t atom(X11Atom name) const { return m_atoms[static_cast<size_t>(name)]; }

    // Lets an error of a checked request go unseen: the window it was for may have gone.
    void ignoreErrors(xcb_void_cookie_t request) const { xcb_discard_reply(m_connection, request.sequence); }

    // A client message to the root window about `window`, as pagers send them.
    void askWindowManager(xcb_window_t window, X11Atom message, const std::array<uint32_t, 5> &data) const;

    void flush() const { xcb_flush(m_connection); }

private:
    X11Connection(xcb_connection_t *connection, xcb_screen_t *screen, int screenNumber);
    [[nodiscard]] bool looksLikeXwayland() const;

    xcb_connection_t *m_connection;
    xcb_screen_t *m_screen;
    bool m_isXwayland = false;
    std::array<xcb_atom_t, static_cast<size_t>(X11Atom::Count)> m_atoms{};
};

// A window's property that has been asked for. The answer is awaited when it is read, so that many can be
// under way at once. Absent, too short or of another format: empty. To be read once.
class X11Property {
public:
    X11Property(
        const X11Connection &connection, xcb_window_t window, xcb_atom_t name, uint32_t maximumWords = 256);
    X11Property(X11Property &&other) noexcept;
    X11Property &operator=(X11Property &&) = delete;
    ~X11Property();

    [[nodiscard]] std::vector<uint32_t> numbers();
    [[nodiscard]] QByteArray text();

private:
    [[nodiscard]] XcbReply<xcb_get_property_reply_t> take(uint8_t format);

    xcb_connection_t *m_connection;
    xcb_get_property_cookie_t m_cookie;
};

} // namespace nubble
