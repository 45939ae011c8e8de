"""Preferences that somebody has edited by hand, or that cannot be kept: the program makes do in silence."""

import os
import random
import resource
import shutil
from functools import partial

from desktop import SCREEN, eventually
from program import DesktopTest

MIDDLE = {"edge": "right", "offset": 0, "locked": False, "visible": True}
WRONG = "[General]\nplacement.edge={}\nplacement.offset={}\nplacement.locked={}\nplacement.visible={}\n"
RUBBISH = [
    b"", b"\0" * 5000, b"[General", b"[General]\nplacement.edge", b"\xff\xfe[\0G\0", b"]=[\n%%%=%zz\n\\\n" * 9,
    random.Random(4).randbytes(300_000),
    WRONG.format("left, right", "1e999", "yes", ",").encode(),
    WRONG.format("@Rect(1 2 3 4)", r"@Variant(\0\0\0\x80\0)", "@ByteArray(true)", "@Invalid()").encode(),
    WRONG.format('"', r"@Variant(\0\0\0\x7f\xff\xff\xff\xff\x10)", r"\x", r"@DateTime(\0)").encode()]


class Preferences(DesktopTest):
    def setUp(self):
        super().setUp()
        self.folder = self.home.path / ".config"
        self.file = self.folder / "com.brevandel.nubble.conf"
        self.program = self.nubble()

    def start(self):
        errors = self.home.path / "errors"
        with errors.open("w") as file:
            self.program.start(stderr=file)
        self.until_body_is_seen()
        return errors

    def until_body_is_seen(self, seen=True):
        """Somewhere at the right edge."""
        eventually(
            lambda: any(max(row[0]) < 32 for row in self.desktop.pixels(SCREEN[0] - 1, 0, 1, SCREEN[1])) == seen,
            "the body is on the screen" if seen else "the body is gone")

    def quit(self, errors):
        self.program.end_all()
        self.assertEqual(errors.read_text(), "")

    def test_that_are_none_count_as_absent(self):
        links = [partial(self.file.symlink_to, target) for target in (self.file.name, "/dev/zero", "/nowhere/at/all")]
        files = [partial(self.file.write_bytes, content) for content in RUBBISH]
        for make in [self.file.mkdir, partial(os.mkfifo, self.file)] + links + files:
            make()
            errors = self.start()
            self.assertLessEqual(MIDDLE.items(), self.program.panel().items())
            self.quit(errors)
            self.file.rmdir() if self.file.is_dir() else self.file.unlink()

    def test_that_are_swapped_while_it_runs_are_left_alone_and_hold_nothing_up(self):
        def huge():
            with self.file.open("wb") as file:
                file.truncate(2 << 30)

        victim = self.home.path / "victim"
        victim.write_text("kept")
        for swap in (partial(os.mkfifo, self.file), partial(self.file.symlink_to, victim), huge):
            errors = self.start()
            swap()
            self.program.run("hide")
            self.until_body_is_seen(False)
            self.quit(errors)
            self.file.unlink()
        self.assertEqual(victim.read_text(), "kept")
        self.assertLess(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss, 1 << 20)  # in KiB

    def test_are_written_when_a_drag_has_ended_whatever_looks_like_a_lock(self):
        (self.folder / f"{self.file.name}.lock").mkdir()
        errors = self.start()
        edges = [("left", (3, 300)), ("top", (500, 3)), ("bottom", (500, SCREEN[1] - 3))]
        with self.desktop.button_held(self.program.ring()):
            for edge, at in edges * 8:
                self.desktop.move_pointer(*at)
                self.program.until_panel(edge=edge)
            self.assertFalse(self.file.exists())
        eventually(self.file.exists, "they are written")
        self.assertIn("placement.edge=bottom", self.file.read_text())
        self.quit(errors)

    def test_that_cannot_be_written_last_until_the_program_ends(self):
        def no_folder():
            shutil.rmtree(self.folder)
            self.folder.write_text("")

        for forbid in (lambda: self.folder.chmod(0o500), lambda: os.mkfifo(self.file), no_folder):
            self.file.unlink(missing_ok=True)
            forbid()
            errors = self.start()
            for command in ("hide", "show"):
                self.assertEqual(self.program.run(command).returncode, 0)
                self.until_body_is_seen(command == "show")
            self.assertEqual(self.program.run("restart").returncode, 0)
            self.assertEqual(self.program.wait(), 0)
            self.program.until_panel(**MIDDLE)
            self.quit(errors)
