"""The keyboard goes where a row's click has sent it, whatever time the window manager thinks it is."""

from desktop import MANAGER, eventually
from program import TerminalTest

SEND_AWAY = {"i3": ["i3-msg", "[id={}]", "move workspace 2"]}.get(MANAGER, ["wmctrl", "-t", "1", "-i", "-r", "{}"])


class TheKeyboard(TerminalTest):
    def until_focused(self, window):
        eventually(lambda: self.desktop.focused() == window, f"the keyboard is in {window}")

    def open_for_keyboard(self, nubble):
        nubble.open_for_keyboard()
        eventually(lambda: self.desktop.focused() not in (self.other, self.terminal), "the card has the keyboard")

    def test_is_in_the_window_that_a_row_has_brought_forward_and_stays_there(self):
        self.home.record(self.pid)
        nubble = self.start_nubble()
        eventually(lambda: nubble.status()["sessions"], "the session is seen")
        for first, is_away in ((self.other, False), (self.terminal, False), (self.other, True)):
            if self.desktop.focused() != first:
                self.activate(first)
            if is_away:
                self.desktop.run(*(word.format(self.terminal) for word in SEND_AWAY))
            self.until_focused(first)
            self.open_for_keyboard(nubble)
            self.desktop.key("Return")
            self.until_focused(self.terminal)
            nubble.until_panel(mode="collapsed")
            self.desktop.key("Escape")
            nubble.run("show")
            self.assertEqual(self.desktop.focused(), self.terminal)

    def test_is_taken_from_nobody_given_back_and_left_to_what_was_activated_meanwhile(self):
        nubble = self.start_nubble()
        self.assertEqual(self.desktop.focused(), self.other)
        self.open_for_keyboard(nubble)
        self.desktop.key("Escape")
        self.until_focused(self.other)
        self.open_for_keyboard(nubble)
        self.activate(self.terminal)
        self.until_focused(self.terminal)
        nubble.run("hide")
        nubble.until_panel(visible=False)
        self.assertEqual(self.desktop.focused(), self.terminal)
