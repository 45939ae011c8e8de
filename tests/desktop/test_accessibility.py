"""The panel without a mouse, through the accessibility tree."""

import os

from gi.repository import GLib

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

    def controls(self, role):
        """None while they change."""
        try:
            return [each for each in self.walk(self.atspi.Registry.getDesktop(0))
                    if each.getState().contains(self.atspi.STATE_SHOWING) and each.getRoleName() == role]
        except GLib.Error:
            return []

    def find(self, role, name):
        def shown():
            return next((each for each in self.controls(role) if each.name.startswith(name)), None)

        return eventually(shown, f"a {role} named {name!r} is on the screen")

    def press(self, name):
        self.find("push button", name).queryAction().doAction(0)

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
