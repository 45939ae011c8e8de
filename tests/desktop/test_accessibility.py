"""The panel without a mouse: through the accessibility tree, and with the keyboard."""

import os

from gi.repository import GLib
from Xlib import X

from desktop import eventually
from program import TerminalTest


class ThePanelWithoutAMouse(TerminalTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        os.environ.update(
            {key: cls.desktop.env[key] for key in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR")})
        import pyatspi  # reads the environment, and connects once
        cls.atspi = pyatspi

    def start_nubble(self, **env):
        return super().start_nubble(QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", **env)

    def walk(self, parent):
        parent.clearCache()  # which only the library's own event loop would keep up to date
        for child in parent:
            if child is not None:
                child.clearCache()
                yield child
                yield from self.walk(child)

    def controls(self, role, state):
        """None while they change."""
        try:
            return [each for each in self.walk(self.atspi.Registry.getDesktop(0))
                    if each.getState().contains(state) and each.getRoleName() == role]
        except GLib.Error:
            return []

    def find(self, role, name):
        def shown():
            controls = self.controls(role, self.atspi.STATE_SHOWING)
            return next((each for each in controls if each.name.startswith(name)), None)

        return eventually(shown, f"a {role} named {name!r} is on the screen")

    def press(self, name):
        self.find("push button", name).queryAction().doAction(0)

    def until_focused(self, window):
        eventually(lambda: self.desktop.focused() == window, "the window has the keyboard")

    def test_has_a_button_for_the_ring_for_each_row_and_to_close(self):
        nubble = self.start_nubble()
        nubble.open_for_keyboard()
        self.find("label", "No sessions running")
        self.press("Close")
        nubble.until_panel(mode="collapsed")
        self.home.record(self.pid, name="Row one", nameSource="user", status="waiting")
        ring = self.find("push button", "Claude sessions: a session waits for you")
        box = ring.queryComponent().getExtents(self.atspi.DESKTOP_COORDS)
        for start, length, expected in zip((box.x, box.y), (box.width, box.height), nubble.ring()):
            self.assertAlmostEqual(start + length / 2, expected, delta=16)
        self.press("Claude sessions")
        nubble.until_panel(mode="sessions")
        self.press("Row one, waiting, just now")
        self.desktop.until_active(self.terminal)

    def test_takes_the_keyboard_when_asked_to_and_gives_it_back_but_takes_it_from_nobody(self):
        self.until_focused(self.other)
        nubble = self.start_nubble()
        self.assertEqual(self.desktop.focused(), self.other)
        backdrop = self.desktop.backdrop.window  # which the window manager would not give it to
        for close in (lambda: self.desktop.key("Escape"), lambda: nubble.run("hide")):
            backdrop.set_input_focus(X.RevertToParent, X.CurrentTime)
            self.until_focused(backdrop.id)
            nubble.open_for_keyboard()
            eventually(lambda: self.desktop.focused() not in (backdrop.id, self.other), "the card has the keyboard")
            close()
            self.until_focused(backdrop.id)
        nubble.open_for_keyboard()
        self.desktop.run("wmctrl", "-i", "-a", hex(self.terminal))
        self.until_focused(self.terminal)
        nubble.run("hide")
        nubble.until_panel(visible=False)
        self.assertEqual(self.desktop.focused(), self.terminal)

    def test_brings_a_session_forward_by_keyboard(self):
        _, newer = self.start_terminal()
        self.home.record(self.pid, name="Row old", nameSource="user", updatedAt=1000)
        self.home.record(newer, name="Row new", nameSource="user")
        self.start_nubble().open_for_keyboard()

        def focus():
            return next((each.name for each in self.controls("push button", self.atspi.STATE_FOCUSED)), "")

        name = focus()
        for _ in range(6):  # each Tab is waited for, that none is under way when the row has been reached
            if name.startswith("Row old"):
                break
            self.desktop.key("Tab")
            name = eventually(lambda: focus() not in ("", name) and focus(), "Tab moves the focus")
        self.desktop.key("Return")
        self.desktop.until_active(self.terminal)
