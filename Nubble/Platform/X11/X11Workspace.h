#pragma once

#include <memory>
#include <vector>
#include <xcb/xcb.h>

#include "Platform/Workspace.h"

namespace nubble {

class X11Connection;
class X11KeyboardFocus;
enum class X11Atom;

// The applications of an EWMH window manager. What the windows say of themselves is read afresh at each call
// and believed only as far as it makes sense.
class X11Workspace : public Workspace {
public:
    // The keyboard, as far as the panel has it, goes to what is activated.
    X11Workspace(std::shared_ptr<const X11Connection> x11, std::shared_ptr<X11KeyboardFocus> keyboard);

    [[nodiscard]] bool canActivate() const override;
    [[nodiscard]] QList<RunningApplication> runningApplications() const override;
    [[nodiscard]] Activation activate(const RunningApplication &application) override;
    [[nodiscard]] Activation activateNearest(const WantedWindow &wanted) override;
    [[nodiscard]] bool isInFront(const WantedWindow &wanted) const override;
    [[nodiscard]] std::optional<RunningApplication> frontApplication() const override;
    [[nodiscard]] std::optional<QString> windowTitle(pid_t pid) const override;

private:
    struct Window {
        xcb_window_t id = XCB_WINDOW_NONE;
        uint32_t desktop = 0;
        bool iconified = false;
    };

    // Those of one owner, the wanted one behind the others.
    struct OwnedWindows {
        std::vector<Window> all; // none: there is no such owner
        bool isCertain = false;
    };

    [[nodiscard]] OwnedWindows ownedWindows(const WantedWindow &wanted) const;
    [[nodiscard]] xcb_window_t activeWindow() const;
    [[nodiscard]] std::vector<xcb_window_t> managedWindows(X11Atom list) const;
    [[nodiscard]] std::vector<xcb_window_t> stackedWindows() const; // the foremost last
    [[nodiscard]] uint32_t currentDesktop() const; // all of them where there is no such thing
    [[nodiscard]] bool isOrdinary(xcb_window_t window) const;
    [[nodiscard]] std::optional<QString> title(xcb_window_t window) const;
    [[nodiscard]] std::vector<pid_t> owners(const std::vector<xcb_window_t> &windows) const; // 0: unknown
    [[nodiscard]] std::vector<Window> withStates(const std::vector<xcb_window_t> &windows) const;
    void bringForward(const OwnedWindows &windows, xcb_timestamp_t time) const;
    void raise(const Window &window) const;
    void focus(const Window &window, xcb_timestamp_t time) const;

    std::shared_ptr<const X11Connection> m_x11;
    std::shared_ptr<X11KeyboardFocus> m_keyboard;
};

} // namespace nubble
