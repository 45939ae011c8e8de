"""Searching chats: key, window and a session that is resumed in a real terminal."""

import contextlib
import json
import os
import signal

from desktop import SCREEN, descendants, eventually
from program import DesktopTest

YARNBIN = """#!/usr/bin/python3 -S
import json, pathlib, sys
home = pathlib.Path(sys.argv[0]).parents[2]
hit = {"source": "chat", "project": "Secret", "category": "Work", "tags": [], "updated": "2026-01-01", "starred": False,
       "snippet": "a secret"}
hits = [hit | {"id": "a", "title": "A secret", "source": "code", "resume": f"echo $PPID > {home}/note"},
        hit | {"id": "b", "title": "Another", "url": "file:///etc/passwd"}]
if sys.argv[1] == "search":
    print(json.dumps({"results": hits[:len(sys.argv[-1])], "corrected": {}}))
elif sys.argv[1] == "thread":
    messages = [{"me": each % 2 == 0, "text": "a secret"} for each in range(9)]
    print(json.dumps(hits[0] | {"messages": messages, "hits": [0, 8]}))
else:
    print(json.dumps([{"category": "Work", "count": 2}]))
"""
SEARCH = ("Control_L", "Alt_L", "space")
UPPER_LINE = SCREEN[1] / 4 + 80


class SearchingChats(DesktopTest):
    def setUp(self):
        super().setUp()
        self.home.tool("yarnbin", YARNBIN)
        self.note = self.home.path / "note"
        self.document = self.window("A document", 100, 400, 300, 300)
        self.home.preferences(addon_search="true")

    def open(self, nubble):
        self.desktop.key(*SEARCH)
        nubble.until("search", open=True)
        self.until_keyboard_in("Search Chats")

    def card(self):
        return self.card_of("Search Chats")

    def test_opens_in_the_upper_part_and_closes_with_the_keyboard_gone(self):
        nubble = self.start_nubble()
        self.assertEqual(nubble.status()["search"], {"open": False, "problem": None, "results": 0, "thread": False})
        for opens in (lambda: self.desktop.key(*SEARCH), lambda: nubble.run("search")):
            opens()
            nubble.until("search", open=True)
            x, y, width, height = eventually(self.card, "the window is there")
            self.assertEqual((width, height), (680, 460))
            self.assertAlmostEqual(x + width / 2, SCREEN[0] / 2, delta=1)
            self.assertAlmostEqual(y + height / 2, UPPER_LINE, delta=1)
            self.desktop.run("wmctrl", "-i", "-a", hex(self.document.window.id))
            nubble.until("search", open=False)
        self.open(nubble)
        self.desktop.key(*SEARCH)
        nubble.until("search", open=False)
        self.desktop.until_active(self.document.window.id)

    def test_what_is_typed_is_found_read_and_left_again(self):
        nubble = self.start_nubble()
        self.open(nubble)
        x, y, _, _ = self.card()
        self.desktop.click(x + 100, y + 27, button=3)  # the field's own menu
        self.desktop.until_menu()
        self.desktop.key("Escape")
        self.desktop.until_no_menu()
        self.desktop.run("xdotool", "type", "--delay", "5", "xx")
        nubble.until("search", results=2, open=True)
        self.desktop.key("Return")
        nubble.until("search", thread=True)
        self.assertNotIn("ecret", json.dumps(nubble.status()))
        self.desktop.key("Escape")
        nubble.until("search", thread=False, open=True)
        self.desktop.key("Down")
        self.desktop.key("Control_L", "Return")  # a link that may not be opened
        self.desktop.key("Control_L", "l")
        self.desktop.key("BackSpace")
        nubble.until("search", open=True, results=0)
        self.desktop.key("Escape")
        nubble.until("search", open=False)
        self.desktop.until_active(self.document.window.id)

    def test_a_session_is_resumed_in_a_terminal_that_lives_on(self):
        nubble = self.start_nubble()
        self.open(nubble)
        self.desktop.run("xdotool", "type", "x")
        nubble.until("search", results=1)
        self.desktop.key("Control_L", "Return")
        terminal = int(eventually(lambda: self.note.exists() and self.note.read_text(), "the session is resumed"))
        nubble.until("search", open=False)
        folder = self.home.path / ".nubble/resume"
        (script,) = folder.iterdir()
        self.assertEqual((folder.stat().st_mode & 0o777, script.stat().st_mode & 0o777), (0o700, 0o755))
        self.assertTrue(script.name.startswith("yarnbin-") and script.suffix == ".command")
        os.kill(nubble.process.pid, signal.SIGKILL)
        nubble.wait()
        document, clients, active = self.document.window.id, "_NET_CLIENT_LIST", "_NET_ACTIVE_WINDOW"
        eventually(lambda: {*self.desktop.property(clients)} == {document, *self.desktop.property(active)} != {document},
                   "the terminal has the keyboard")
        self.desktop.run("xdotool", "type", "--delay", "5", "echo again >> note2 && mv note2 note\n")
        eventually(lambda: (self.home.path / "note").read_text() == "again\n", "its shell takes what is typed")
        self.assertIn(terminal, descendants(os.getpid()))
        with contextlib.suppress(ProcessLookupError):
            os.kill(terminal, signal.SIGKILL)
