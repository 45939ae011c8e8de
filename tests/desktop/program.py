"""The program as tests run it: in a home of its own, on the class's desktop."""

import contextlib
import json
import os
import pathlib
import signal
import subprocess
import tempfile
import time
import unittest

from desktop import COMPOSITED, PATIENCE, SCREEN, Desktop, Window, descendants, end, eventually

PROGRAM = os.environ.get("NUBBLE_PROGRAM", "")

SHADOW = (28, 20, 28, 36)  # the room for it at the left, the top, the right and the bottom

# The body in the middle of a vertical edge: its depth, and where the ring's centre is from the edge.
BODY_DEPTH = 124 / 3
RING_ACROSS = 62 / 3


class Home:
    def __init__(self, folder):
        self.path = pathlib.Path(folder)
        (self.path / ".claude/sessions").mkdir(parents=True)
        (self.path / ".config").mkdir()

    def record(self, pid, **fields):
        now = int(time.time() * 1000)
        record = {
            "pid": pid, "sessionId": f"session-{pid}", "cwd": "/tmp/garden", "startedAt": now, "updatedAt": now,
            "status": "idle", "kind": "interactive", "entrypoint": "cli"} | fields
        whole = self.path / f".claude/sessions/{pid}.json.new"
        whole.write_text(json.dumps(record))
        whole.rename(whole.with_suffix(""))

    def transcript(self, session, title, prompt):
        file = self.path / f".claude/projects/-tmp-garden/{session}.jsonl"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(
            f'{{"type":"ai-title","aiTitle":"{title}","sessionId":"{session}"}}\n'
            f'{{"type":"last-prompt","lastPrompt":"{prompt}","sessionId":"{session}"}}\n')

    def tool(self, name, script):
        """A command of this home's own."""
        file = self.path / f".local/bin/{name}"
        file.parent.mkdir(parents=True)
        file.write_text(script)
        file.chmod(0o700)
        return file

    def preferences(self, **values):
        text = "[General]\n" + "".join(f"{key}={value}\n" for key, value in values.items())
        (self.path / ".config/com.brevandel.nubble.conf").write_text(text.replace("_", "."))


class Nubble:
    """The program of one home, whether or not it runs."""

    offset = 0  # of its panel, from the middle of the edge
    process = None

    def __init__(self, desktop, home):
        self.desktop = desktop
        self.home = ["--home", str(home.path)]

    def start(self, stderr=None, **env):
        self.process = subprocess.Popen(
            [PROGRAM, *self.home], stdin=subprocess.DEVNULL, stderr=stderr, env=self.desktop.env | env)
        eventually(self.is_running, "the program answers")

    def run(self, *arguments, env=None):
        return subprocess.run(
            [PROGRAM, *self.home, *arguments], stdin=subprocess.DEVNULL, env=env or self.desktop.env,
            capture_output=True, text=True, timeout=PATIENCE, check=False)

    def status(self):
        """Asked for again where the program has been too busy to answer."""
        return json.loads(eventually(lambda: self.run("status", "--json").stdout, "the status is told"))

    def is_running(self):
        return self.status()["source"] == "running"

    def panel(self):
        return self.status().get("panel", {})

    def until(self, part, **wanted):
        """Until that part of the status is so."""
        def now():
            return self.status().get(part, {})

        eventually(lambda: wanted.items() <= now().items(), lambda: f"{part} {wanted}, it is {now()}")

    def until_panel(self, **wanted):
        self.until("panel", **wanted)

    def instances(self):
        """The process ids of this home's instances, however they were started."""
        found = []
        for pid in descendants(os.getpid()):
            with contextlib.suppress(OSError):
                command = pathlib.Path(f"/proc/{pid}/cmdline").read_text(errors="replace").split("\0")[:-1]
                if command[:3] == [PROGRAM, *self.home] and command[3:] in ([], ["start"]):
                    found.append(pid)
        return found

    def only_instance(self):
        """Its process id. What it is just about to start looks like another one for a moment."""
        [pid] = eventually(lambda: len(found := self.instances()) == 1 and found, self.instances)
        return pid

    def ring(self):
        """The ring's centre on the screen, at the right edge."""
        return (SCREEN[0] - RING_ACROSS, SCREEN[1] / 2 + self.offset)

    def open_card(self):
        self.desktop.click(*self.ring())
        self.until_panel(mode="sessions")

    def open_for_keyboard(self):
        self.run("sessions")
        self.until_panel(mode="sessions")

    def wait(self):
        return self.process.wait(PATIENCE)

    def processor_time(self):
        fields = pathlib.Path(f"/proc/{self.process.pid}/stat").read_text().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def quit(self):
        return end(self.process)

    def end_all(self):
        if self.process:
            self.quit()
        for pid in self.instances():
            os.kill(pid, signal.SIGTERM)
        eventually(lambda: not self.instances(), "every instance has ended")


class DesktopTest(unittest.TestCase):
    """Each test has a home and, from `start_nubble`, a program of its own; the desktop is the class's."""

    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop()
        cls.addClassCleanup(cls.desktop.close)

    def setUp(self):
        self.home = Home(tempfile.mkdtemp(dir=self.desktop.folder))
        self.desktop.move_pointer(400, 700)
        self.desktop.backdrop.clicks()

    def nubble(self):
        nubble = Nubble(self.desktop, self.home)
        self.addCleanup(nubble.end_all)
        return nubble

    def start_nubble(self, **env):
        nubble = self.nubble()
        nubble.start(**env)
        return nubble

    def window(self, title, *place):
        window = Window(self.desktop, *place, managed=True)
        self.addCleanup(window.close)
        window.window.set_wm_name(title)
        window.window.set_wm_class("editor", "Editor")
        window.window.change_property(
            self.desktop.display.intern_atom("_NET_WM_PID"), self.desktop.display.intern_atom("CARDINAL"), 32,
            [os.getpid()])
        self.desktop.run("wmctrl", "-i", "-a", hex(window.window.id))
        self.desktop.until_active(window.window.id)
        return window

    def until_keyboard_in(self, title):
        """Until the program's window of that title is the active one."""
        def windows():
            return [window.id for window, _, _ in self.desktop.nubble_windows() if window.get_wm_name() == title]

        eventually(lambda: self.desktop.property("_NET_ACTIVE_WINDOW") == windows(), f"{title} has the keyboard")

    def card_of(self, title):
        """Where that window's card is on the screen, without the shadow around it."""
        for window, _, size in self.desktop.nubble_windows():
            if window.get_wm_name() == title:
                at = self.desktop.root.translate_coords(window, 0, 0)
                left, top, right, bottom = SHADOW
                return at.x + left, at.y + top, size.width - left - right, size.height - top - bottom
        return None

    def card_of_menu(self):
        """The left, top, right and bottom of the menu that opens, without its shadow."""
        menu = self.desktop.until_menu()
        left, top, right, bottom = SHADOW if COMPOSITED else (0, 0, 0, 0)
        return (menu.x + left, menu.y + top, menu.x + menu.width - right, menu.y + menu.height - bottom)

    def start_terminal(self):
        """An xterm whose shell runs a sleeping process. Returns its window and that process's id."""
        note = pathlib.Path(tempfile.mkdtemp(dir=self.desktop.folder)) / "pid"
        terminal = self.desktop.start(
            "xterm", "-geometry", "60x12+40+40", "-e", "sh", "-c",
            f"sleep 1000 & echo $WINDOWID $! > {note}.new; mv {note}.new {note}; wait")
        self.addCleanup(end, terminal)
        eventually(note.exists, "the process in the terminal runs")
        window, pid = map(int, note.read_text().split())
        eventually(lambda: window in self.desktop.property("_NET_CLIENT_LIST"), "its window is there")
        return window, pid


class TerminalTest(DesktopTest):
    """Each test has a terminal with a process, and another window that is the active one."""

    def setUp(self):
        super().setUp()
        self.terminal, self.pid = self.start_terminal()
        window = Window(self.desktop, 60, 420, 300, 200, managed=True)
        self.addCleanup(window.close)
        self.other = window.window.id
        self.activate(self.other)

    def activate(self, window):
        self.desktop.run("wmctrl", "-i", "-a", hex(window))
        self.desktop.until_active(window)
