"""A session works in a terminal: the panel shows it and brings it forward."""

import os
import signal
import unittest

from desktop import SCREEN, Window, eventually
from program import DesktopTest

CARD_MIDDLE = SCREEN[0] - 200  # of the sessions card, at the right edge
ONLY_ROW = SCREEN[1] / 2 + 17  # of a card with one session


class ASessionInATerminal(DesktopTest):
    def setUp(self):
        super().setUp()
        self.terminal, self.pid = self.start_terminal()
        self.terminal_window = self.desktop.window_of(self.terminal)
        self.home.transcript(f"session-{self.pid}", "Plant the hedge", "Where should the hedge stand?")
        self.other = Window(self.desktop, 60, 420, 300, 200, managed=True)
        self.addCleanup(self.other.close)
        self.desktop.run("wmctrl", "-i", "-a", hex(self.other.window.id))
        self.until_active(self.other.window.id)

    def until_active(self, window):
        eventually(lambda: self.desktop.active_window() == window, "the window is the active one")

    def session(self, nubble):
        sessions = nubble.status()["sessions"]
        return sessions[0] if sessions else {}

    def test_is_shown_while_it_works_and_when_it_has_finished(self):
        nubble = self.start_nubble()
        self.assertEqual(nubble.status()["sessions"], [])
        self.home.record(self.pid, status="busy")
        eventually(lambda: self.session(nubble).get("lastPrompt"), "the transcript has been read")
        session = self.session(nubble)
        self.assertEqual(session["title"], "Plant the hedge")
        self.assertEqual(session["lastPrompt"], "Where should the hedge stand?")
        self.assertEqual((session["state"], session["word"], session["elapsed"]), ("working", "working", "just now"))
        self.assertEqual(nubble.status()["activity"], "working")
        self.home.record(self.pid, status="idle")
        eventually(lambda: nubble.status()["activity"] == "completed", "the run is shown as completed")
        self.assertEqual(self.session(nubble)["word"], "done")
        self.assertIn("Plant the hedge", nubble.run("status").stdout)

    def test_turns_the_ring_while_it_works(self):
        nubble = self.start_nubble()
        x, y = (round(each) for each in nubble.ring())

        def ring():
            return self.desktop.pixels(x - 14, y - 14, 28, 28)

        self.home.record(self.pid, status="busy")
        eventually(lambda: nubble.status()["activity"] == "working", "the session works")
        first = ring()
        eventually(lambda: ring() != first, "the ring turns")
        self.home.record(self.pid, status="idle")
        eventually(
            lambda: any(red < 80 < 200 < green for row in ring() for red, green, _ in row), "the ring is green")

    def test_comes_forward_by_a_click_on_its_row(self):
        self.home.record(self.pid)
        nubble = self.start_nubble()
        nubble.open_card()
        self.assertEqual(self.desktop.active_window(), self.other.window.id, "the panel takes no focus")
        self.desktop.click(CARD_MIDDLE, ONLY_ROW)
        self.until_active(self.terminal_window)

    def test_comes_forward_when_iconified(self):
        self.home.record(self.pid)
        self.desktop.run("xdotool", "windowminimize", str(self.terminal_window))
        nubble = self.start_nubble()
        nubble.open_card()
        self.desktop.click(CARD_MIDDLE, ONLY_ROW)
        self.until_active(self.terminal_window)

    def test_comes_forward_from_another_desktop(self):
        self.home.record(self.pid)
        self.addCleanup(self.desktop.run, "wmctrl", "-s", "0")
        self.desktop.run("wmctrl", "-i", "-r", hex(self.terminal_window), "-t", "1")
        nubble = self.start_nubble()
        nubble.open_card()
        self.desktop.click(CARD_MIDDLE, ONLY_ROW)
        self.until_active(self.terminal_window)
        self.assertEqual(self.desktop.current_desktop(), 1)

    def test_leaves_the_list_with_its_process(self):
        self.home.record(self.pid)
        nubble = self.start_nubble()
        self.assertEqual(self.session(nubble)["pid"], self.pid)
        os.kill(self.pid, signal.SIGTERM)
        eventually(lambda: not nubble.status()["sessions"], "the session has left")


if __name__ == "__main__":
    unittest.main()
