"""The review inbox: a real database, and Quenwick's interface on the loopback."""

import http.server
import json
import os
import sqlite3
import threading

from program import DesktopTest

COLUMNS = "guid, source, sender, thread, body, due_at, time_known, status"
DUE = "2999-01-01T10:00:00Z"
PITCH = 44  # from the ring's centre down to the cell's, about


class Quenwick(http.server.ThreadingHTTPServer):
    """Its interface, with these reviews."""

    def __init__(self, reviews):
        super().__init__(("127.0.0.1", 0), Answer)
        self.reviews = reviews


class Answer(http.server.BaseHTTPRequestHandler):
    def log_message(self, *_):
        pass

    def answer(self, value):
        body = json.dumps(value).encode()
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def do_GET(self):
        items = [{"guid": guid, "source": "mail", "who": "Ada", "due_at": DUE} for guid in self.server.reviews]
        self.answer({"pending": len(items), "items": items})



class ReviewInbox(DesktopTest):
    def setUp(self):
        super().setUp()
        self.folder = self.home.path / ".config/Quenwick"
        self.folder.mkdir()
        self.home.preferences(addon_quenwick="true")

    def write_database(self, *rows):
        with sqlite3.connect(self.folder / "review.db") as database:
            database.execute(f"CREATE TABLE IF NOT EXISTS review ({COLUMNS})")
            database.execute("DELETE FROM review")
            database.executemany("INSERT INTO review VALUES (?, 'mail', ?, '', 'text', ?, 1, 'pending')", rows)

    def serve(self, reviews):
        server = Quenwick(reviews)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        (self.folder / "live.json").write_text(json.dumps({"port": server.server_address[1], "pid": os.getpid()}))

    def cell(self, nubble):
        x, y = nubble.ring()
        return x, y + PITCH

    def open_card(self, nubble):
        self.desktop.click(*self.cell(nubble))
        nubble.until_panel(mode="inbox")

    def test_the_cell_is_there_when_quenwick_is_at_the_start(self):
        nubble = self.start_nubble()
        self.assertEqual(
            nubble.status()["review"],
            {"installed": False, "live": False, "pending": 0, "items": 0, "busy": 0, "checking": False, "lastMessage": None})
        self.write_database(("1", "Ada", DUE), ("2", "Grace", None))
        nubble.until("review", installed=True, pending=2, items=1)
        nubble.quit()
        nubble.start()
        nubble.until("review", pending=2)
        self.open_card(nubble)
        self.desktop.click(*self.cell(nubble))
        nubble.until_panel(mode="collapsed")

    def test_follows_quenwick_as_it_comes_and_goes(self):
        self.write_database(("x", "Ada", DUE))
        self.serve(["a", "b"])
        nubble = self.start_nubble()
        nubble.until("review", live=True, pending=2, items=2)
        self.open_card(nubble)
        (self.folder / "live.json").unlink()
        nubble.until("review", live=False, pending=1, items=1)
        self.serve(["c", "d", "e"])
        nubble.until("review", live=True, pending=3)
        self.assertEqual(nubble.panel()["mode"], "inbox")
