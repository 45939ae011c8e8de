#pragma once

#include <QColor>
#include <QWidget>

#include <vector>
#include <xcb/xcb.h>

#include "Platform/X11/X11Connection.h"

namespace nubble {

// Another application as the X server and the window manager see it: windows of one colour that claim to
// belong to a process of the test's choice. Every request has been carried out when its call returns.
class ForeignApplication {
public:
    enum Kind { Managed, Dock, Unmanaged };

    explicit ForeignApplication(uint32_t pid = 4242) : m_pid(pid) { }

    // Shown before it returns; a managed one also has been placed in the window manager's list.
    xcb_window_t open(const QRect &pixels, const QColor &colour, Kind kind = Managed);
    void closeAll() { m_windows.clear(); }

    void setNumbers(
        xcb_window_t window, const char *property, const std::vector<uint32_t> &values,
        const char *type = "CARDINAL");
    void setText(xcb_window_t window, const char *property, const QByteArray &value);
    [[nodiscard]] std::vector<uint32_t> numbers(xcb_window_t window, const char *property) const;
    void focus(xcb_window_t window);

    [[nodiscard]] xcb_atom_t atom(const char *name) const;
    [[nodiscard]] int presses() const { return m_presses; } // of mouse buttons on its windows so far
    [[nodiscard]] xcb_window_t focusedWindow() const;
    [[nodiscard]] QRect onScreen(xcb_window_t window) const; // in pixels
    [[nodiscard]] xcb_window_t root() const { return m_x11->root(); }

private:
    std::shared_ptr<const X11Connection> m_x11 = X11Connection::ofThisProgram();
    int m_presses = 0;
    std::vector<std::unique_ptr<QWidget>> m_windows;
    uint32_t m_pid;
};

// Moves the pointer there and clicks, as a user does.
void userClicks(const QPoint &pixel);

} // namespace nubble
