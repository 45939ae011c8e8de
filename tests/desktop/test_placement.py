"""Where the panel is, what it covers, and which clicks it takes."""

from desktop import BACKDROP, COMPOSITED, SCREEN, Window, end, eventually
from program import BODY_DEPTH, DesktopTest

WIDTH, HEIGHT = SCREEN
BODY_BEFORE_RING = 154 / 3  # along, from the body's start to the ring's centre
AT_EDGES = {  # where a drag goes, and a pixel of the body at that edge
    "left": ((4, 300), (0, 300)),
    "top": ((500, 3), (500, 0)),
    "right": ((WIDTH - 3, 500), (WIDTH - 1, 500)),
    "bottom": ((700, HEIGHT - 3), (700, HEIGHT - 1)),
}


def is_dark(colour):
    return max(colour) < 32


class ThePanel(DesktopTest):
    def until_dark(self, x, y):
        eventually(lambda: is_dark(self.desktop.pixel(x, y)), f"the body is at {x}, {y}")

    def until_backdrop(self, x, y):
        eventually(lambda: self.desktop.pixel(x, y) == BACKDROP, f"the desktop is seen at {x}, {y}")

    def covered(self):
        """Left, top, right and bottom of what differs from the desktop's colour, once the card's part is clear."""
        rows = self.desktop.pixels(0, 0, WIDTH, HEIGHT)
        ys = [y for y, row in enumerate(rows) if row.count(BACKDROP) < WIDTH]
        xs = [x for y in ys for x, colour in enumerate(rows[y]) if colour != BACKDROP]
        return (min(xs), min(ys), max(xs) + 1, max(ys) + 1) if xs and min(xs) > WIDTH - 100 else None

    def test_goes_to_each_edge_by_a_drag_and_stays_there_after_a_restart(self):
        nubble = self.start_nubble()
        position = nubble.ring()
        for edge, (target, body) in AT_EDGES.items():
            self.desktop.drag(position, target)
            nubble.until_panel(edge=edge)
            self.until_dark(*body)
            self.desktop.move_pointer(400, 500)  # off the ring, which would show its card
            nubble.until_panel(mode="collapsed")
            position = body
        offset = nubble.panel()["offset"]
        self.assertAlmostEqual(offset, 60, delta=1.5)
        self.assertEqual(nubble.quit(), 0)
        self.until_backdrop(*position)
        nubble = self.start_nubble()
        nubble.until_panel(edge="bottom", offset=offset)
        self.until_dark(*position)

    def test_covers_nothing_but_the_body_and_an_open_card(self):
        nubble = self.start_nubble()
        left, top, right, bottom = eventually(self.covered, "the body is on the screen")
        self.assertEqual(right, WIDTH)
        self.assertAlmostEqual(left, WIDTH - BODY_DEPTH, delta=1.5)
        self.assertAlmostEqual(top, HEIGHT / 2 - BODY_BEFORE_RING, delta=4)  # its shoulders end in a point
        self.assertLess(bottom - top, 130)
        for corner in (top + 1, bottom - 2):  # outside the rounded ends
            self.assertEqual(self.desktop.pixel(left + 1, corner), BACKDROP)
        nubble.run("sessions")  # a pointer on its way to the ring would open another card first, which fades into this
        self.until_dark(WIDTH - 200, HEIGHT // 2)
        for y in (HEIGHT / 2 - 80, HEIGHT / 2 + 80):  # between the body and the card, far from the tail
            self.until_backdrop(WIDTH - BODY_DEPTH - 3, y)

        def is_as_around():
            column = [row[0] for row in self.desktop.pixels(WIDTH - 200, HEIGHT // 2 - 120, 1, 240)]
            card = [y for y, colour in enumerate(column) if is_dark(colour)]
            outside = {*column[:card[0] - 1], *column[card[-1] + 2:]}
            return min(blue for _, _, blue in outside) >= BACKDROP[2] // 3 if COMPOSITED else outside == {BACKDROP}

        eventually(is_as_around, "nothing but the card's shadow is seen around it")

    def test_takes_clicks_on_its_body_and_card_only_and_closes_by_others_and_by_a_drag_while_locked(self):
        self.home.preferences(placement_locked="true")
        nubble = self.start_nubble()
        beside = (WIDTH - 200, HEIGHT / 2)
        self.desktop.click(*beside)
        eventually(self.desktop.backdrop.clicks, "the click has reached the window below")
        self.desktop.click(WIDTH - 20, HEIGHT / 2 + 46)  # the body, beyond the ring
        nubble.open_card()
        self.desktop.click(*beside)
        self.assertEqual(nubble.panel()["mode"], "sessions")
        self.assertEqual(self.desktop.backdrop.clicks(), [])
        self.desktop.click(*nubble.ring())
        nubble.until_panel(mode="collapsed")
        above = (WIDTH - 200, HEIGHT / 2 - 150)  # where a longer card would be
        for button, place in ((1, (300, 300)), (3, (300, 300)), (1, above)):
            nubble.open_card()
            self.desktop.click(*place, button)
            nubble.until_panel(mode="collapsed")
            eventually(self.desktop.backdrop.clicks, "the click has reached the window below, too")
        self.desktop.click(WIDTH - 1, HEIGHT / 2)  # the screen's last pixel, level with the ring
        nubble.until_panel(mode="sessions")
        self.desktop.click(WIDTH - 1, HEIGHT / 2)
        nubble.until_panel(mode="collapsed")
        nubble.open_card()
        self.desktop.backdrop.clicks()
        self.desktop.click(300, 300, 4)  # the wheel
        eventually(self.desktop.backdrop.clicks, "the wheel has turned elsewhere")
        self.assertEqual(nubble.panel()["mode"], "sessions")
        self.desktop.drag(nubble.ring(), (4, 300))
        nubble.until_panel(mode="collapsed", edge="right", offset=0)

    def test_lies_above_a_full_screen_window(self):
        self.start_nubble()
        window = Window(self.desktop, 0, 0, 400, 300, managed=True)
        self.addCleanup(window.close)
        self.desktop.run("wmctrl", "-i", "-a", hex(window.window.id))
        self.desktop.run("wmctrl", "-i", "-r", hex(window.window.id), "-b", "add,fullscreen")
        eventually(lambda: window.window.get_geometry().width == WIDTH, "the window fills the screen")
        self.until_dark(WIDTH - 1, HEIGHT / 2)
        self.assertEqual(self.desktop.property("_NET_CLIENT_LIST"), [window.window.id])

    def test_follows_the_screen_when_that_changes_its_size(self):
        self.start_nubble()
        self.until_dark(WIDTH - 1, HEIGHT / 2)
        self.addCleanup(self.desktop.run, "xrandr", "--output", "screen", "--mode", "%dx%d" % SCREEN)
        self.desktop.run("xrandr", "--newmode", "small", *"30 1024 1025 1026 1027 700 701 702 703".split())
        self.desktop.run("xrandr", "--addmode", "screen", "small")
        self.desktop.run("xrandr", "--output", "screen", "--mode", "small")
        self.until_dark(1023, 350)
        self.until_backdrop(1023 - 60, 350)

    def test_goes_on_when_a_compositor_comes_and_goes(self):
        self.start_nubble().open_card()
        for _ in range(0 if COMPOSITED else 2):
            compositor = self.desktop.start_compositor()
            self.until_dark(WIDTH - 1, HEIGHT / 2)
            self.until_backdrop(WIDTH - BODY_DEPTH - 3, HEIGHT / 2 - 100)
            end(compositor)
            self.until_dark(WIDTH - 1, HEIGHT / 2)
            self.until_backdrop(WIDTH - BODY_DEPTH + 2, HEIGHT / 2 - BODY_BEFORE_RING + 2)
