"""A click on a session's row brings its own window forward, and in it its tab and pane, whatever terminal it is in. With
NUBBLE_TERMINALS=all more of them are tried."""

import contextlib
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from Xlib import X
from Xlib.error import BadWindow

from desktop import MANAGER, PATIENCE, SCREEN, end, eventually
from program import DesktopTest

ROW = (SCREEN[0] - 200, SCREEN[1] / 2 + 17)  # of a card with one session, at the right edge
COPY = (SCREEN[0] - 102, ROW[1])  # its button

# Stands for the command: sets its terminal's title and tells its process id.
SESSION = """#!/bin/sh
printf '\\033]0;* %s\\007' "$1"
echo $$ > "$2/$1.new"; mv "$2/$1.new" "$2/$1"
exec sleep 1000
"""

# How each opens a window, of the same process where it can, and a tab in the one used last.
KITTY = "unix:@nubble-test"
TERMINALS = {
    "xterm": ("xterm -e", None),
    "xfce4-terminal": ("xfce4-terminal -x", None),
    "lxterminal": ("lxterminal -e", None),
    "gnome-terminal": ("gnome-terminal --window --", None),
    "konsole": ("konsole -e", "konsole --new-tab -e"),
    "kitty": (f"kitty -1 -o allow_remote_control=yes --listen-on {KITTY}", f"kitty @ --to {KITTY} launch --type=tab"),
    "alacritty": ("alacritty -e", None),
}

USUAL = {"xterm", "xfce4-terminal", "tmux"}
EVERY_ONE = os.environ.get("NUBBLE_TERMINALS") == "all"

# So that Konsole has one process, whose windows have the title of their tab.
KONSOLE = {
    ".config/konsolerc": "[KonsoleWindow]\nUseSingleInstance=true\n[Desktop Entry]\nDefaultProfile=Title.profile\n",
    ".local/share/konsole/Title.profile": "[General]\nName=Title\nLocalTabTitleFormat=%w\nParent=FALLBACK/\n",
}


class SessionTest(DesktopTest):
    """Sessions of which one at a time is shown, by a card that stays open."""

    def setUp(self):
        super().setUp()
        self.notes = pathlib.Path(tempfile.mkdtemp(dir=self.desktop.folder))
        self.script = self.notes / "session.sh"
        self.script.write_text(SESSION)
        self.script.chmod(0o755)
        for name, text in KONSOLE.items():
            (self.desktop.folder / name).parent.mkdir(parents=True, exist_ok=True)
            (self.desktop.folder / name).write_text(text)
        self.program = self.start_nubble()
        self.program.open_card()

    def active(self):
        return (self.desktop.property("_NET_ACTIVE_WINDOW") or [0])[0]

    def title(self, window):
        atom = self.desktop.display.intern_atom("_NET_WM_NAME")
        with contextlib.suppress(Exception):  # it has gone, or has none
            return self.desktop.display.create_resource_object("window", window).get_full_property(
                atom, X.AnyPropertyType).value.decode()
        return ""

    def begin(self, *command):
        process = self.desktop.start(*command)
        self.addCleanup(end, process)

    def start(self, command, name):
        """Runs a session of that name by that command. Returns its process id."""
        self.begin(*command.split(), str(self.script), name, str(self.notes))
        eventually((self.notes / name).exists, f"{name} runs")
        return int((self.notes / name).read_text())

    def windows(self):
        """Those that are there: i3 goes on to list the last one, whose number may be given anew."""
        found = set()
        for window in self.desktop.property("_NET_CLIENT_LIST"):
            with contextlib.suppress(BadWindow):
                self.desktop.display.create_resource_object("window", window).get_attributes()
                found.add(window)
        return found

    def until_window(self, begin):
        """What `begin` returns, and the window that comes of it."""
        before = self.windows()
        begun = begin()
        window = eventually(lambda: self.windows() - before, "its window is there").pop()
        self.desktop.until_active(window)
        return begun, window

    def open(self, command, name):
        return self.until_window(lambda: self.start(command, name))

    def copied(self):
        """What the row's button copies, once it is there."""
        display, window = self.desktop.display, self.desktop.backdrop.window
        clipboard, kind, here = map(display.intern_atom, ("CLIPBOARD", "UTF8_STRING", "COPIED"))

        def click_copies():
            self.desktop.click(*COPY)
            return display.get_selection_owner(clipboard) != X.NONE

        eventually(click_copies, "the button copies", pause=0.2)
        window.delete_property(here)
        window.convert_selection(clipboard, kind, here, X.CurrentTime)
        return eventually(lambda: window.get_full_property(here, X.AnyPropertyType), "it is told").value.decode()

    def click_row(self, pid, name):
        for file in self.home.path.glob(".claude/sessions/*"):
            file.unlink()
        self.home.record(pid, name=name)
        eventually(lambda: [each["pid"] for each in self.program.status()["sessions"]] == [pid], "only it is shown")
        self.desktop.click(*ROW)

    def answer(self, *command):
        return subprocess.run(
            command, env=self.desktop.env, capture_output=True, text=True, timeout=PATIENCE, check=False).stdout

    def need_window_number(self):
        if self.command.startswith(("gnome", "lx")):
            self.skipTest("which of its windows shows a multiplexer cannot be told")

    def send_away(self, window):
        """Iconified where the window manager can, and to another desktop."""
        if MANAGER == "i3":
            self.desktop.run("i3-msg", f"[id={window}]", "move workspace 2")
            return
        self.desktop.run("xdotool", "windowminimize", str(window))
        self.desktop.run("wmctrl", "-i", "-r", hex(window), "-t", "1")


    def until_seen(self, name, *windows):
        eventually(lambda: self.active() in windows and name in self.title(self.active()), f"{name} is seen")


class InATerminal:
    def test_the_one_of_two_windows_comes_forward_iconified_and_from_another_desktop(self):
        first, first_window = self.open(self.command, "hedge")
        second, second_window = self.open(self.command, "roses")
        for away in (None, first_window):
            if away:
                self.send_away(away)
            self.click_row(first, "hedge")
            self.desktop.until_active(first_window)
            self.click_row(second, "roses")
            self.desktop.until_active(second_window)

    def test_the_tab_is_selected(self):
        if not self.tab:
            self.skipTest("its tabs cannot be selected by others")
        first, first_window = self.open(self.command, "hedge")
        second, window = self.open(self.command, "roses")
        third = self.start(self.tab, "lawn")
        variables = dict(each.split("=", 1) for each in pathlib.Path(f"/proc/{third}/environ").read_text().split("\0")[:-1])
        third_window = int(variables["WINDOWID"])
        for pid, name, there in (
                (second, "roses", window), (first, "hedge", first_window), (third, "lawn", third_window)) * 2:
            self.click_row(pid, name)
            self.until_seen(name, there)


class InScreen:
    def test_its_window_is_selected(self):
        self.need_window_number()
        name = self.notes.name
        first, window = self.open(f"{self.command} screen -c /dev/null -S {name}", "hedge")
        self.addCleanup(self.desktop.run, "screen", "-S", name, "-X", "quit")
        second = self.start(f"screen -S {name} -X screen", "roses")
        self.open(self.command, "lawn")
        for number, pid, said in (("1", second, "roses"), ("0", first, "hedge"), ("1", second, "roses")):
            self.click_row(pid, said)
            self.desktop.until_active(window)
            eventually(lambda: self.answer("screen", "-S", name, "-Q", "number").startswith(number), "it is selected")


class InTmux:
    """Panes have titles, which the server gives to the windows that show them."""

    def setUp(self):
        super().setUp()
        self.server = ["tmux", "-S", f"{self.notes}/socket"]
        (self.notes / "conf").write_text("set -g set-titles on\nset -g set-titles-string '#T'\n")

    def tmux(self, *words):
        return " ".join([*self.server, *words])

    def test_window_and_pane_are_selected_also_where_the_terminal_shows_another_session(self):
        self.need_window_number()
        new = f"{self.command} {self.tmux('-f', f'{self.notes}/conf', 'new-session')}"
        first, window = self.open(new, "hedge")
        second, other_window = self.open(new, "roses")
        self.addCleanup(self.desktop.run, *self.server, "kill-server")
        third = self.start(self.tmux("split-window", "-t", "0:"), "lawn")
        fourth = self.start(self.tmux("new-window", "-t", "0:"), "pond")
        fifth = self.start(self.tmux("new-session", "-d"), "weeds")
        for pid, name, there in (
                (third, "lawn", window), (second, "roses", other_window), (fourth, "pond", window),
                (first, "hedge", window)) * 2:
            self.click_row(pid, name)
            self.until_seen(name, there)
        self.desktop.run(*self.server, "resize-pane", "-Z", "-t", "0:0.0")
        self.click_row(first, "hedge")
        self.click_row(fifth, "weeds")
        self.until_seen("weeds", window, other_window)
        zoomed = self.answer(*self.server, "display-message", "-p", "-t", "0:0", "#{window_zoomed_flag}")
        self.assertEqual(zoomed, "1\n", "a pane that was seen stays as large")

    def test_a_detached_one_is_attached_by_the_command_that_its_row_copies(self):
        pid = self.start(self.tmux("-f", f"{self.notes}/conf", "new-session", "-d"), "hedge")
        self.addCleanup(self.desktop.run, *self.server, "kill-server")
        self.start(self.tmux("new-window"), "roses")
        self.click_row(pid, "hedge")
        command = [*self.command.split(), "sh", "-c", self.copied()]
        _, window = self.until_window(lambda: self.begin(*command))
        self.until_seen("hedge", window)
        self.click_row(pid, "hedge")
        self.desktop.until_active(window)


def why_not(terminal, needed):
    """Why it is left out; empty: it is tried."""
    programs = [each for each in (terminal, needed) if each]
    if not EVERY_ONE and not {*programs} <= USUAL:
        return "tried with NUBBLE_TERMINALS=all"
    return "".join(f"{each} is not installed" for each in programs if not shutil.which(each))


def load_tests(loader, _tests, _pattern):
    suite = unittest.TestSuite()
    for terminal, (command, tab) in TERMINALS.items():
        for base, needed in ((InATerminal, None), (InTmux, "tmux"), (InScreen, "screen")):
            case = type(f"{base.__name__}_{terminal}", (base, SessionTest), {"command": command, "tab": tab})
            reason = why_not(terminal, needed)
            suite.addTests(loader.loadTestsFromTestCase(unittest.skipIf(reason, reason)(case)))
    return suite
