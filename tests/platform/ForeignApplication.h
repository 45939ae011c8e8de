#pragma once

#include <QColor>
#include <QRect>

#include <vector>
#include <xcb/xcb.h>

namespace nubble {

// Another application as the X server sees it: a connection of its own, windows of one colour that claim to
// belong to a process of the test's choice. Every request has been carried out when its call returns.
class ForeignApplication {
public:
    enum Kind { Managed, Dock, Unmanaged };

    explicit ForeignApplication(uint32_t pid = 4242);
    ForeignApplication(const ForeignApplication &) = delete;
    ForeignApplication &operator=(const ForeignApplication &) = delete;
    ~ForeignApplication();

    // Shown before it returns; a managed one also has been placed in the window manager's list.
    xcb_window_t open(const QRect &pixels, const QColor &colour, Kind kind = Managed);
    void destroy(xcb_window_t window);

    void setNumbers(
        xcb_window_t window, const char *property, const std::vector<uint32_t> &values,
        const char *type = "CARDINAL");
    void setText(xcb_window_t window, const char *property, const QByteArray &value);
    [[nodiscard]] std::vector<uint32_t> numbers(xcb_window_t window, const char *property) const;
    [[nodiscard]] xcb_atom_t atom(const char *name) const;
    void focus(xcb_window_t window);

    [[nodiscard]] int presses(); // of mouse buttons that have reached its windows so far
    [[nodiscard]] xcb_window_t focusedWindow() const;
    [[nodiscard]] bool isViewable(xcb_window_t window) const;
    [[nodiscard]] QRect onScreen(xcb_window_t window) const; // in pixels
    [[nodiscard]] xcb_window_t root() const { return m_root; }

private:
    void awaitServer() const;

    xcb_connection_t *m_connection;
    xcb_window_t m_root;
    uint32_t m_pid;
    int m_presses = 0;
};

// Moves the pointer there and clicks, as a user does.
void userClicks(const QPoint &pixel);

} // namespace nubble
