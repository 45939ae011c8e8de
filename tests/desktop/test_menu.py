"""The panel's context menu, opened by the right button and used by keyboard and mouse."""

from desktop import SCREEN, eventually
from program import BODY_DEPTH, DesktopTest

ENTRIES = [
    "Lock Position", "Move to Edge", "Center on Edge", "Add-ons", "Notify Me", "Refresh Everything",
    "Restart Nubble", "Hide Notch", "Quit Nubble"]


class TheContextMenu(DesktopTest):
    below_ring = 0

    def open_menu(self, nubble):
        x, y = nubble.ring()
        self.below_ring = 10 - self.below_ring  # not where the last press was: two would be a double click
        self.desktop.click(x, y + self.below_ring, button=3)
        return self.card_of_menu()

    def choose(self, nubble, entry, *keys):
        left, top, _, bottom = self.open_menu(nubble)
        place = (left + 20, top + (bottom - top) / len(ENTRIES) * (ENTRIES.index(entry) + 0.5))
        if keys:
            self.desktop.move_pointer(*place)
        else:
            self.desktop.click(*place)
        for key in keys:
            self.desktop.key(key)
        self.desktop.until_no_menu()

    def test_opens_within_the_screen_and_closes_without_effect(self):
        nubble = self.start_nubble()
        _, _, right, _ = self.open_menu(nubble)
        self.assertAlmostEqual(right, SCREEN[0] - BODY_DEPTH - 12, delta=1)
        before = nubble.panel()
        self.desktop.key("Escape")
        self.desktop.until_no_menu()
        self.open_menu(nubble)
        self.desktop.click(300, 300)
        self.desktop.until_no_menu()
        self.assertEqual(nubble.panel(), before)

    def test_changes_the_placement(self):
        nubble = self.start_nubble()
        for locked in (True, False):
            self.choose(nubble, "Lock Position")
            nubble.until_panel(locked=locked)
        self.choose(nubble, "Hide Notch")
        nubble.until_panel(visible=False)
        eventually(lambda: max(self.desktop.pixel(SCREEN[0] - 1, SCREEN[1] / 2)) > 32, "the panel is gone")
        self.assertEqual(nubble.run().returncode, 0)
        nubble.until_panel(visible=True)
        self.choose(nubble, "Move to Edge", "Right", "Down", "Return")  # the second of the edges
        nubble.until_panel(edge="left")
        eventually(lambda: max(self.desktop.pixel(0, SCREEN[1] / 2)) < 32, "the body is at the left edge")

    def test_restarts_and_quits_the_program(self):
        self.home.preferences(placement_offset="-90")
        nubble = self.start_nubble()
        nubble.offset = -90
        self.choose(nubble, "Restart Nubble")
        self.assertEqual(nubble.wait(), 0)
        nubble.until_panel(edge="right", offset=-90)
        self.assertNotEqual(nubble.only_instance(), nubble.process.pid)
        self.choose(nubble, "Quit Nubble")
        eventually(lambda: not nubble.instances(), "the successor has quit")
