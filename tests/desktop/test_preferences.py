"""Preferences that somebody has edited by hand, or that cannot be kept: the program makes do in silence."""

import os
import random
import unittest

from desktop import SCREEN, eventually
from program import DesktopTest, Nubble

MIDDLE = {"edge": "right", "offset": 0, "locked": False, "visible": True}
WRONG = [  # edge, offset, locked, visible
    ("middle", "inf", "yes", "0"),
    ("LEFT", "nan", "TRUE", "no"),
    ("left, right", "12, 5", "true, false", ","),
    ("@Rect(1 2 3 4)", "@Variant(\\0\\0\\0\\x80\\0)", "@ByteArray(true)", "@Invalid()"),
    ('"', "-1e999", "@Variant(\\0\\0\\0\\x7f\\xff\\xff\\xff\\xff\\x10)", "\\x"),
    ("", "0x10", "1", "@DateTime(\\0)"),
]
RUBBISH = [
    b"", b"\0" * 5000, b"[General", b"[General]\nplacement.edge", b"\xff\xfe[\0G\0", b"]=[\n%%%=%zz\n\\\n" * 9,
    random.Random(4).randbytes(300_000)]


def is_dark(colour):
    return max(colour) < 32


class Preferences(DesktopTest):
    def setUp(self):
        super().setUp()
        self.folder = self.home.path / ".config"
        self.file = self.folder / "com.brevandel.nubble.conf"
        self.errors = self.home.path / "errors"
        self.nubble = Nubble(self.desktop, self.home)
        self.addCleanup(self.nubble.end_all)

    def start(self):
        with self.errors.open("w") as errors:
            self.nubble.start(stderr=errors)

    def until_body_is_seen(self, seen=True):
        """Somewhere at the right edge."""
        eventually(
            lambda: any(is_dark(row[0]) for row in self.desktop.pixels(SCREEN[0] - 1, 0, 1, SCREEN[1])) == seen,
            "the body is on the screen" if seen else "the body is gone")

    def quit(self):
        self.nubble.end_all()
        self.assertEqual(self.errors.read_text(), "")

    def check_default(self):
        self.start()
        self.nubble.until_panel(**MIDDLE)
        self.until_body_is_seen()
        self.quit()

    def restart(self):
        self.assertEqual(self.nubble.run("restart").returncode, 0)
        self.assertEqual(self.nubble.wait(), 0)

    def test_of_the_wrong_kind_count_as_absent(self):
        for values in WRONG:
            with self.subTest(values=values):
                self.home.preferences(**dict(zip(map("placement_{}".format, MIDDLE), values)))
                self.check_default()

    def test_far_off_the_screen_leave_the_panel_on_it(self):
        for offset in ("1e300", "-1e300"):
            self.home.preferences(placement_offset=offset)
            self.start()
            self.until_body_is_seen()
            self.assertEqual(self.nubble.run("hide").returncode, 0)
            self.until_body_is_seen(False)
            self.quit()

    def test_that_are_none_count_as_absent(self):
        for content in RUBBISH:
            with self.subTest(content=content[:20]):
                self.file.write_bytes(content)
                self.check_default()

    def test_may_have_something_else_in_the_place_of_their_file(self):
        for make in (self.file.mkdir, lambda: os.mkfifo(self.file), lambda: self.file.symlink_to(self.file.name),
                     lambda: self.file.symlink_to("/dev/zero"), lambda: self.file.symlink_to("/nowhere/at/all")):
            make()
            self.check_default()
            self.file.rmdir() if self.file.is_dir() else self.file.unlink()

    def test_that_cannot_be_written_last_until_the_program_ends(self):
        def no_folder():
            self.folder.rmdir()
            self.folder.write_text("")

        for forbid in (lambda: self.folder.chmod(0o500), lambda: os.mkfifo(self.file), no_folder):
            self.file.unlink(missing_ok=True)
            forbid()
            self.start()
            self.until_body_is_seen()
            self.assertEqual(self.nubble.run("hide").returncode, 0)
            self.until_body_is_seen(False)
            self.assertEqual(self.nubble.run("show").returncode, 0)
            self.until_body_is_seen()
            self.restart()
            self.nubble.until_panel(**MIDDLE)
            self.quit()


if __name__ == "__main__":
    unittest.main()
