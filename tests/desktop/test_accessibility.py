"""The panel without a mouse: through the accessibility tree, and with the keyboard."""

import unittest

from accessibility import Accessible
from desktop import Window, eventually
from program import DesktopTest


class ThePanelWithoutAMouse(DesktopTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.accessible = Accessible(cls.desktop)

    def setUp(self):
        super().setUp()
        self.terminal, self.pid = self.start_terminal()
        self.terminal_window = self.desktop.window_of(self.terminal)
        self.other = Window(self.desktop, 60, 420, 300, 200, managed=True)
        self.addCleanup(self.other.close)
        eventually(lambda: self.focused() == self.other.window.id, "another window has the keyboard")

    def start_nubble(self, *arguments, **env):
        return super().start_nubble(*arguments, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", **env)

    def press(self, name):
        self.accessible.find("push button", name).queryAction().doAction(0)

    def focused(self):
        return self.desktop.display.get_input_focus().focus.id

    def until_terminal_is_active(self):
        eventually(lambda: self.desktop.active_window() == self.terminal_window, "the terminal is the active window")

    def test_has_a_button_for_the_ring_for_each_row_and_to_close(self):
        self.home.record(self.pid, name="Row one", nameSource="user", status="waiting")
        nubble = self.start_nubble()
        ring = self.accessible.find("push button", "Claude sessions: a session waits for you")
        for found, expected in zip(self.accessible.center(ring), nubble.ring()):
            self.assertAlmostEqual(found, expected, delta=16)
        self.press("Claude sessions")
        nubble.until_panel(mode="sessions")
        self.press("Row one, waiting, just now")
        self.until_terminal_is_active()
        self.press("Close")
        nubble.until_panel(mode="collapsed")

    def test_says_when_nothing_runs(self):
        nubble = self.start_nubble()
        self.assertEqual(nubble.run("sessions").returncode, 0)
        nubble.until_panel(mode="sessions")
        self.accessible.find("label", "No sessions running")

    def test_takes_the_keyboard_when_asked_to_and_gives_it_back(self):
        nubble = self.start_nubble()
        self.assertEqual(self.focused(), self.other.window.id)
        self.assertEqual(nubble.run("sessions").returncode, 0)
        nubble.until_panel(mode="sessions")
        eventually(lambda: self.focused() != self.other.window.id, "the card has the keyboard")
        self.desktop.key("Escape")
        nubble.until_panel(mode="collapsed")
        eventually(lambda: self.focused() == self.other.window.id, "the keyboard is back")

    def test_brings_a_session_forward_by_keyboard(self):
        _, newer = self.start_terminal()
        self.home.record(self.pid, name="Row old", nameSource="user", updatedAt=1000)
        self.home.record(newer, name="Row new", nameSource="user")
        nubble = self.start_nubble()
        self.assertEqual(nubble.run("sessions").returncode, 0)
        nubble.until_panel(mode="sessions")

        def focus():
            return self.accessible.focused("push button")

        name = focus()
        for _ in range(6):  # each Tab is waited for, that none is under way when the row has been reached
            if name.startswith("Row old"):
                break
            self.desktop.key("Tab")
            name = eventually(lambda: focus() not in ("", name) and focus(), "Tab moves the focus")
        self.desktop.key("Return")
        self.until_terminal_is_active()


if __name__ == "__main__":
    unittest.main()
