"""Asking about the screen: keys, window and picture, with a `claude` that keeps what it is asked."""

import base64
import contextlib
import json
import os
import pathlib
import signal
import subprocess

from desktop import PATIENCE, SCREEN, descendants, eventually
from program import DesktopTest

CLAUDE = """#!/usr/bin/python3 -S
import json, sys
turns = open(sys.argv[0] + ".turns", "w")
for line in sys.stdin:
    print(line, end="", file=turns, flush=True)
    print(json.dumps({"type": "assistant", "session_id": "own", "message": {"content": [
        {"type": "text", "text": "A **reply**"}]}}), flush=True)
    print(json.dumps({"type": "result", "is_error": "secret" in line, "result": "a secret"}), flush=True)
"""
ASK = ("Control_L", "Alt_L", "a")
SCREENSHOT = ("Control_L", "Alt_L", "s")
BESIDE = {"right": 53, "left": 53, "top": 69, "bottom": 69}  # the body's depth and 12


def decoded(jpeg):
    """A picture's pixels, row by row."""
    ppm = subprocess.run(
        ["convert", "jpeg:-", "-depth", "8", "ppm:-"], input=jpeg, capture_output=True, check=True,
        timeout=PATIENCE).stdout
    _, size, _, pixels = ppm.split(b"\n", 3)
    width, height = map(int, size.split())
    return [[tuple(pixels[at:at + 3]) for at in range(row * width * 3, (row + 1) * width * 3, 3)] for row in range(height)]


def runs(pid):
    with contextlib.suppress(OSError):
        return pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[0] != "Z"
    return False


class AskingAboutTheScreen(DesktopTest):
    def setUp(self):
        super().setUp()
        self.claude = self.home.tool("claude", CLAUDE)
        self.document = self.window("A document", 100, 100, 600, 500)

    def start(self, **preferences):
        self.home.preferences(addon_ask="true", **preferences)
        return self.start_nubble()

    def open(self, nubble, *keys):
        self.desktop.key(*(keys or ASK))
        nubble.until("ask", open=True, capturing=False)
        self.until_keyboard_in("Ask Claude")

    def ask(self, nubble, question):
        """What `claude` gets."""
        messages = nubble.status()["ask"]["messages"]
        self.desktop.run("xdotool", "type", "--delay", "5", question)
        self.desktop.key("Return")
        nubble.until("ask", busy=False, messages=messages + 2)
        turn = json.loads((self.claude.parent / "claude.turns").read_text().splitlines()[-1])
        return turn["message"]["content"]

    def assert_without_window(self, picture, card):
        """The picture shows what lies below the window, which is there again."""
        x, y, width, height = card
        pixels = decoded(base64.b64decode(picture["source"]["data"]))
        self.assertEqual((len(pixels[0]), len(pixels)), SCREEN)
        seen = [pixels[row][column] for row in range(y, y + height, 20) for column in range(x, x + width, 20)]
        self.assertLess(sum(max(each) < 80 for each in seen), len(seen) / 20)
        eventually(lambda: max(self.desktop.pixel(x + 10, y + height // 2)) < 80, "the window is seen")

    def test_the_picture_shows_what_was_in_front_and_never_the_window(self):
        nubble = self.start()
        self.open(nubble)
        picture, text = self.ask(nubble, "what is this")
        self.assertEqual(text["text"], "[On screen: Editor — A document]\n\nwhat is this")
        self.assert_without_window(picture, self.card_of("Ask Claude"))
        for times in range(2):
            self.open(nubble, *SCREENSHOT)  # while the window itself is in front
            picture, text = self.ask(nubble, f"again {times}")
            self.assertTrue(text["text"].startswith("[On screen: Editor — A document]"), text)
            self.assert_without_window(picture, self.card_of("Ask Claude"))
        self.desktop.key("Escape")
        nubble.until("ask", open=False)
        self.open(nubble, *SCREENSHOT)  # goes on
        self.assertEqual(nubble.status()["ask"]["messages"], 6)
        self.desktop.key(*ASK)
        nubble.until("ask", open=False)
        self.open(nubble)  # begins anew, at once after it was closed
        self.assertEqual(nubble.status()["ask"]["messages"], 0)
        self.assert_without_window(self.ask(nubble, "new")[0], self.card_of("Ask Claude"))
        self.ask(nubble, "secret")
        nubble.until("ask", problem="Claude reported an error.")
        self.assertNotIn("secret", json.dumps(nubble.status()))
        self.assertEqual(nubble.status()["sessions"], [])
        self.assertEqual(nubble.quit(), 0)  # with the window open

    def test_opens_beside_the_notch_and_closes_with_the_keyboard_gone(self):
        for edge in ("right", "left", "top", "bottom"):
            with self.subTest(edge):
                nubble = self.start(placement_edge=edge)
                self.open(nubble)
                x, y, width, height = self.card_of("Ask Claude")
                away = {"right": SCREEN[0] - x - width, "left": x, "top": y, "bottom": SCREEN[1] - y - height}
                self.assertAlmostEqual(away[edge], BESIDE[edge], delta=1)
                along = y + height / 2 - SCREEN[1] / 2 if edge in ("right", "left") else x + width / 2 - SCREEN[0] / 2
                self.assertAlmostEqual(along, 16, delta=5)  # the body is longer behind the ring
                self.desktop.run("wmctrl", "-i", "-a", hex(self.document.window.id))
                nubble.until("ask", open=False)
                nubble.quit()

    def test_a_question_from_elsewhere_is_asked_with_the_picture(self):
        nubble = self.start()
        self.desktop.run(
            "gdbus", "emit", "--session", "--object-path", "/", "--signal", "com.brevandel.nubble.ask",
            "{'question': <'Why?'>}")
        nubble.until("ask", open=True, busy=False, messages=2, problem=None)
        content = json.loads((self.claude.parent / "claude.turns").read_text())["message"]["content"]
        self.assertEqual([block["type"] for block in content], ["image", "text"])
        self.assertTrue(content[1]["text"].endswith("Why?"))
        process = next(pid for pid in descendants(nubble.process.pid))
        os.kill(nubble.process.pid, signal.SIGKILL)
        nubble.wait()
        eventually(lambda: not runs(process), "no claude is left behind")
