"""A session works in a terminal: the panel shows it and brings it forward."""

import os
import signal

from desktop import SCREEN, eventually
from program import TerminalTest

ONLY_ROW = (SCREEN[0] - 200, SCREEN[1] / 2 + 17)  # of a card with one session, at the right edge


class ASessionInATerminal(TerminalTest):
    def test_is_shown_while_it_works_and_when_it_has_finished_until_its_process_ends(self):
        self.home.transcript(f"session-{self.pid}", "Plant the hedge", "Where should the hedge stand?")
        nubble = self.start_nubble()
        x, y = (round(each) for each in nubble.ring())

        def ring():
            return self.desktop.pixels(x - 14, y - 14, 28, 28)

        def session():
            return (nubble.status()["sessions"] or [{}])[0]

        self.home.record(self.pid, status="busy")
        eventually(lambda: session().get("lastPrompt") == "Where should the hedge stand?", "the transcript is read")
        self.assertEqual(
            {key: session()[key] for key in ("pid", "title", "state", "word", "elapsed")},
            {"pid": self.pid, "title": "Plant the hedge", "state": "working", "word": "working", "elapsed": "just now"})
        self.assertEqual(nubble.status()["activity"], "working")
        first = ring()
        eventually(lambda: ring() != first, "the ring turns")
        self.home.record(self.pid, status="idle")
        eventually(lambda: nubble.status()["activity"] == "completed", "the run is shown as completed")
        self.assertEqual(session()["word"], "done")
        self.assertIn("Plant the hedge", nubble.run("status").stdout)
        eventually(lambda: any(red < 80 < 200 < green for row in ring() for red, green, _ in row), "the ring is green")
        os.kill(self.pid, signal.SIGTERM)
        eventually(lambda: not session(), "the session has left")

    def test_comes_forward_by_a_click_on_its_row_iconified_or_from_another_desktop(self):
        self.home.record(self.pid)
        nubble = self.start_nubble()
        nubble.open_card()
        self.assertEqual(self.desktop.property("_NET_ACTIVE_WINDOW"), [self.other], "the panel takes no focus")
        self.addCleanup(self.desktop.run, "wmctrl", "-s", "0")
        for away in ("true", f"xdotool windowminimize {self.terminal}", f"wmctrl -i -r {self.terminal:#x} -t 1"):
            self.activate(self.other)
            self.desktop.run(*away.split())
            self.desktop.click(*ONLY_ROW)
            self.desktop.until_active(self.terminal)
        self.assertEqual(self.desktop.property("_NET_CURRENT_DESKTOP"), [1])
