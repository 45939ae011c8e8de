#!/usr/bin/python3
"""How long a change of a session's record takes to the first changed pixel of the ring, on a private X server with openbox.

    reaction.py BUILD_FOLDER [--changes 30] [--sessions 20]

BUILD_FOLDER holds a release build. Beside it, in the same run, the least that could be: the same file read by inotify and
a pixel drawn at once by a bare client of the same server. The screen is looked at in turn with nothing else, so that a
look and the time that it takes are part of both.
"""

import argparse
import ctypes
import os
import pathlib
import statistics
import sys
import threading
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests/desktop"))
from desktop import SCREEN, Desktop, end, eventually
from program import Home
from Xlib import display

RING = (SCREEN[0] - 30, SCREEN[1] // 2 - 40, 30, 80)
BARE = (0, 0, 1, 1)


def look(root, area):
    return root.get_image(*area, 2, 0xFFFFFFFF).data


def until_still(root, area):
    """The picture once the animations of the last change are over."""
    since, before = time.monotonic(), look(root, area)
    while time.monotonic() - since < 0.3:
        time.sleep(0.02)
        now = look(root, area)
        if now != before:
            since, before = time.monotonic(), now
    return before


def reaction(root, area, change):
    """Milliseconds from `change` to another picture of the area."""
    before = until_still(root, area)
    start = time.monotonic()
    change()
    while look(root, area) == before:
        if time.monotonic() - start > 20:
            raise AssertionError("nothing changes")
    return (time.monotonic() - start) * 1000


class BareClient(threading.Thread):
    """Reads each file that is moved into the folder and paints its pixel in another colour."""

    def __init__(self, name, folder):
        super().__init__(daemon=True)
        self.display = display.Display(name)
        screen = self.display.screen()
        self.window = screen.root.create_window(0, 0, 1, 1, 0, screen.root_depth, override_redirect=True)
        self.window.map()
        self.display.sync()
        self.folder = folder
        self.libc = ctypes.CDLL(None)
        self.watch = self.libc.inotify_init()
        self.libc.inotify_add_watch(self.watch, str(folder).encode(), 0x80)  # IN_MOVED_TO

    def run(self):
        context = self.window.create_gc()
        colour = 0
        while os.read(self.watch, 4096):
            if not (self.folder / "record").exists():
                return  # the folder has gone
            (self.folder / "record").read_bytes()
            colour ^= 0xFFFFFF
            context.change(foreground=colour)
            self.window.fill_rectangle(context, 0, 0, 1, 1)
            self.display.flush()


def replace(file, text):
    new = file.with_suffix(".new")
    new.write_text(text)
    new.rename(file)


def main():
    parser = argparse.ArgumentParser(description="Measures the time from a record to the first changed pixel.")
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--changes", type=int, default=30)
    parser.add_argument("--sessions", type=int, default=20)
    options = parser.parse_args()
    desktop = Desktop()
    try:
        home = Home(desktop.folder / "home")
        processes = [desktop.start("sleep", "100000") for _ in range(options.sessions)]
        for process in processes:
            home.record(process.pid)
        nubble = desktop.start(str(options.build.resolve() / "nubble"), "--home", str(home.path))
        folder = desktop.folder / "bare"
        folder.mkdir()
        BareClient(desktop.env["DISPLAY"], folder).start()
        pid = processes[0].pid
        eventually(lambda: any(look(desktop.root, RING)), "the panel")
        times = {"nubble": [], "bare": []}
        for number in range(options.changes):
            status = ("waiting", "idle")[number % 2]
            times["nubble"].append(reaction(desktop.root, RING, lambda: home.record(pid, status=status)))
            times["bare"].append(reaction(desktop.root, BARE, lambda: replace(folder / "record", str(number))))
        print(f"{options.changes} changes of one of {options.sessions} records, ms to the first pixel; load {os.getloadavg()[0]:.1f}")
        for name, each in times.items():
            print(f"{name:10} median {statistics.median(each):8.2f}  worst {max(each):8.2f}  next {sorted(each)[-2]:8.2f}")
        end(nubble)
    finally:
        desktop.close()


if __name__ == "__main__":
    main()
