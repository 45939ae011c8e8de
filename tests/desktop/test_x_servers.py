"""X servers that lack what others have, and those that lie within a Wayland compositor."""

from Xlib import X

from desktop import SCREEN, eventually
from program import BODY_DEPTH, DesktopTest
from x_server_door import door

DISPENSABLE = ["RANDR", "SHAPE", "XInputExtension", "XFIXES", "XKEYBOARD", "RENDER"]


class AnXServer(DesktopTest):
    def panel(self):
        return next((geometry for _, _, geometry in self.desktop.nubble_windows()), None)

    def test_without_an_extension_is_enough(self):
        for missing in [*([name] for name in DISPENSABLE), DISPENSABLE]:
            with self.subTest(missing), door(self.desktop.env["DISPLAY"], {name: "-" * len(name) for name in missing}) \
                    as display:
                nubble = self.start_nubble(DISPLAY=display)
                eventually(self.panel, "the panel is there")
                nubble.open_for_keyboard()
                panel = self.panel()
                self.assertEqual(panel.x + panel.width, SCREEN[0])
                self.assertEqual(nubble.quit(), 0)

    def test_within_a_compositor_says_when_the_keyboard_does_not_come_and_keeps_no_click_beside_the_panel(self):
        with door(self.desktop.env["DISPLAY"], {"XWAYLAND": "XINERAMA"}) as display:  # which is there
            nubble = self.start_nubble(DISPLAY=display)
            eventually(lambda: (panel := self.panel()) and panel.width < BODY_DEPTH + 2, "it is as large as its body")
            self.desktop.root.set_input_focus(X.RevertToParent, X.CurrentTime)
            answer = nubble.run("sessions")  # no window is the active one
            self.assertEqual(answer.returncode, 1)
            self.assertRegex(answer.stderr, r"\Anubble: [^\n]*keyboard\n\Z")
            nubble.until_panel(mode="sessions")
            self.assertLess(self.panel().height, 200)
