"""The panel without a mouse: through the accessibility tree, and with the keyboard."""

import os

from Xlib import X

from desktop import eventually
from program import TerminalTest


class Accessible:
    """The accessible tree of the programs on a desktop. One per test process, for the library connects once."""

    def __init__(self, desktop):
        os.environ.update({key: desktop.env[key] for key in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR")})
        import pyatspi  # reads the environment
        from gi.repository import GLib

        self._atspi = pyatspi
        self._gone = GLib.Error

    def _walk(self, parent):
        parent.clearCache()  # which only the library's own event loop would keep up to date
        for child in parent:
            if child is not None:
                child.clearCache()
                yield child
                yield from self._walk(child)

    def find_all(self, role, starts_with=""):
        """The controls on the screen; none while they change."""
        found = []
        try:
            for each in self._walk(self._atspi.Registry.getDesktop(0)):
                showing = each.getState().contains(self._atspi.STATE_SHOWING)
                if showing and each.getRoleName() == role and each.name.startswith(starts_with):
                    found.append(each)
        except self._gone:
            return []
        return found

    def find(self, role, starts_with):
        return eventually(
            lambda: self.find_all(role, starts_with), f"a {role} named {starts_with!r} is on the screen")[0]

    def center(self, control):
        box = control.queryComponent().getExtents(self._atspi.DESKTOP_COORDS)
        return (box.x + box.width / 2, box.y + box.height / 2)

    def focused(self, role):
        """The name of the control that has the keyboard, if it is one of that role."""
        controls = (each for each in self.find_all(role) if each.getState().contains(self._atspi.STATE_FOCUSED))
        return next((each.name for each in controls), "")


class ThePanelWithoutAMouse(TerminalTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.accessible = Accessible(cls.desktop)

    def setUp(self):
        super().setUp()
        self.until_focused(self.other)

    def start_nubble(self, **env):
        return super().start_nubble(QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", **env)

    def press(self, name):
        self.accessible.find("push button", name).queryAction().doAction(0)

    def focused(self):
        return self.desktop.display.get_input_focus().focus.id

    def until_focused(self, window):
        eventually(lambda: self.focused() == window, "the window has the keyboard")

    def test_has_a_button_for_the_ring_for_each_row_and_to_close(self):
        nubble = self.start_nubble()
        nubble.open_for_keyboard()
        self.accessible.find("label", "No sessions running")
        self.press("Close")
        nubble.until_panel(mode="collapsed")
        self.home.record(self.pid, name="Row one", nameSource="user", status="waiting")
        ring = self.accessible.find("push button", "Claude sessions: a session waits for you")
        for found, expected in zip(self.accessible.center(ring), nubble.ring()):
            self.assertAlmostEqual(found, expected, delta=16)
        self.press("Claude sessions")
        nubble.until_panel(mode="sessions")
        self.press("Row one, waiting, just now")
        self.desktop.until_active(self.terminal)

    def test_takes_the_keyboard_when_asked_to_and_gives_it_back_but_takes_it_from_nobody(self):
        nubble = self.start_nubble()
        self.assertEqual(self.focused(), self.other)
        backdrop = self.desktop.backdrop.window  # which the window manager would not give it to
        for close in (lambda: self.desktop.key("Escape"), lambda: nubble.run("hide")):
            backdrop.set_input_focus(X.RevertToParent, X.CurrentTime)
            self.until_focused(backdrop.id)
            nubble.open_for_keyboard()
            eventually(lambda: self.focused() not in (backdrop.id, self.other), "the card has the keyboard")
            close()
            self.until_focused(backdrop.id)
        nubble.open_for_keyboard()
        self.desktop.run("wmctrl", "-i", "-a", hex(self.terminal))
        self.until_focused(self.terminal)
        nubble.run("hide")
        nubble.until_panel(visible=False)
        self.assertEqual(self.focused(), self.terminal)

    def test_brings_a_session_forward_by_keyboard(self):
        _, newer = self.start_terminal()
        self.home.record(self.pid, name="Row old", nameSource="user", updatedAt=1000)
        self.home.record(newer, name="Row new", nameSource="user")
        self.start_nubble().open_for_keyboard()

        def focus():
            return self.accessible.focused("push button")

        name = focus()
        for _ in range(6):  # each Tab is waited for, that none is under way when the row has been reached
            if name.startswith("Row old"):
                break
            self.desktop.key("Tab")
            name = eventually(lambda: focus() not in ("", name) and focus(), "Tab moves the focus")
        self.desktop.key("Return")
        self.desktop.until_active(self.terminal)
