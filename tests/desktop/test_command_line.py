"""The program as a process: its commands and their exit statuses, one instance per home, and its end."""

import functools
import json
import os
import pathlib
import re
import signal
import subprocess
import tempfile
import time

from gi.repository import GLib

from desktop import end, eventually
from program import PROGRAM, DesktopTest, Home
from status_item_host import connect

DONE, FAILED, WRONG_USAGE, NOT_RUNNING = range(4)
ODD_NAME = "a 'b' \"c\" $HOME `d` \\e 100%f = ~ü\t\n"


def switches(pid):
    """How often that process has gone to sleep."""
    text = pathlib.Path(f"/proc/{pid}/status").read_text()
    return int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", text, re.M)[1])


class TheProgram(DesktopTest):
    def setUp(self):
        super().setUp()
        self.program = self.nubble()

    def check(self, *arguments, status=DONE, error=""):
        answer = self.program.run(*arguments)
        self.assertEqual((answer.returncode, answer.stderr), (status, error), arguments)
        return answer.stdout

    def check_fails(self, answer, why, status=FAILED):
        self.assertEqual((answer.returncode, answer.stdout), (status, ""))
        self.assertRegex(answer.stderr, rf"\Anubble: [^\n]*{why}[^\n]*\n\Z")

    def descriptors(self, pid):
        return {os.readlink(f"/proc/{pid}/fd/{each}") for each in range(3)}

    def test_is_reached_by_each_command_and_by_another_start_and_tells_why_an_add_on_refuses(self):
        self.program.start()
        for command, visible in [
                (["toggle"], False), (["toggle"], True), (["hide"], False), (["hide"], False), (["show"], True),
                (["hide"], False), ([], True), (["hide"], False), (["sessions"], True)]:
            self.check(*command)
            self.program.until_panel(visible=visible)
        self.assertEqual(self.program.panel()["mode"], "sessions")
        self.assertEqual(self.program.only_instance(), self.program.process.pid)
        for arguments, title in [
                (["ask"], "Ask Claude About Screen"), (["search"], "Search Chats"),
                (["notes", "start"], "Meeting Recorder"), (["notes", "stop"], "Meeting Recorder")]:
            self.check_fails(self.program.run(*arguments), f'"{title}" is off')
        for words in ([""], ["x" * 100_000], ["--", "--why", "-h"], ["ü\n\t\x1b"], [b"\xff\xfe\xed\xa0\x80"]):
            self.check_fails(self.program.run("ask", *words), "is off")

    def test_restarts_and_ends(self):
        closing = ["sh", "-c", 'exec "$@" <&- >&- 2>&-', "sh", PROGRAM, *self.program.home]
        self.program.process = subprocess.Popen(closing, env=self.desktop.env)
        eventually(self.program.is_running, "the program answers")
        self.assertEqual(self.descriptors(self.program.process.pid), {"/dev/null"})
        self.check("hide")
        self.check("restart")
        self.assertEqual(self.program.wait(), DONE)
        self.assertFalse(self.program.panel()["visible"])  # the successor is there, and is as it was left
        self.check("start")
        self.program.only_instance()
        self.assertFalse(self.program.panel()["visible"])
        self.check("quit")
        eventually(lambda: not self.program.instances(), "it has ended")

    def test_ends_as_by_quit_when_it_is_asked_to_by_a_signal(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            self.program.start()
            self.program.process.send_signal(number)
            self.assertEqual(self.program.wait(), DONE)
            self.assertEqual(self.program.status()["source"], "read")

    def test_is_the_only_one_without_a_bus_too(self):
        env = self.desktop.env | {"DBUS_SESSION_BUS_ADDRESS": ""}
        lock = self.home.path / ".config/com.brevandel.nubble.lock"
        for make in (lambda: None, lambda: lock.write_bytes(b"\xff\n" * 99), lock.mkdir, lambda: os.mkfifo(lock)):
            make()
            self.program.process = subprocess.Popen([PROGRAM, *self.program.home], stdin=subprocess.DEVNULL, env=env)
            eventually(self.desktop.nubble_windows, "its panel is there")
            if lock.is_file():
                for start in ([], ["start"]):  # nor with a bus that it does not know
                    self.check_fails(self.program.run(*start, env=env if not start else None), "Nubble runs already")
                self.assertEqual(self.program.only_instance(), self.program.process.pid)
            self.assertEqual(self.program.quit(), DONE)
            lock.rmdir() if lock.is_dir() else lock.unlink()

    def test_answers_while_other_programs_flood_it_with_requests(self):
        self.home.preferences(addon_ask="true")
        self.program.start()
        question = GLib.Variant("(a{sv})", ({"question": GLib.Variant("s", "x" * 1000)},))
        bus = connect(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"])
        asking, answering = time.process_time(), self.program.processor_time()
        for _ in range(10_000):
            bus.emit_signal(None, "/", "com.brevandel.nubble", "ask", question)
        self.check("hide")
        self.program.until_panel(visible=False)
        self.assertLess(self.program.processor_time() - answering, 10 * (time.process_time() - asking))
        bus.close_sync(None)

    def test_tells_status_bars_of_each_change_until_they_stop_reading(self):
        self.program.start()
        bars = [self.start_bar("--json"), self.start_bar()]
        self.assertEqual([next(json.loads(line)["text"] for line in bars[0].stdout), bars[1].stdout.readline()],
                         ["no sessions", "no sessions\n"])
        self.home.record(os.getpid(), status="busy")
        self.assertEqual(bars[1].stdout.readline(), "1 working\n")
        self.assertEqual({"working", 0, "garden: working"}, self.of_bar(bars[0], "class", "percentage", "tooltip"))
        waking = [switches(bar.pid) for bar in bars]
        self.check("hide")
        self.assertEqual(json.loads(bars[0].stdout.readline())["panel"]["visible"], False)
        self.program.quit()
        self.assertEqual(bars[1].stdout.readline(), "not running\n")
        self.assertEqual({"off", 0, "Nubble is not running."}, self.of_bar(bars[0], "class", "percentage", "tooltip"))
        self.program.start()
        self.assertEqual(bars[1].stdout.readline(), "1 working\n")
        self.assertLess(sum(map(switches, (bar.pid for bar in bars))) - sum(waking), 60)
        for bar in bars:
            bar.stdout.close()
            self.assertIn(bar.wait(20), (DONE, -signal.SIGPIPE))  # which it gets when it is just writing

    def start_bar(self, *arguments):
        bar = subprocess.Popen(
            [PROGRAM, *self.program.home, "status", "--follow", *arguments], env=self.desktop.env, text=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
        self.addCleanup(lambda: bar.poll() is None and end(bar))
        return bar

    @staticmethod
    def of_bar(bar, *keys):
        told = json.loads(bar.stdout.readline())
        return {told[key] for key in keys}

    def test_of_another_home_is_another_one(self):
        self.program.start()
        self.home = Home(tempfile.mkdtemp(dir=self.desktop.folder))
        second = self.start_nubble()
        self.home.record(os.getpid())
        eventually(lambda: second.status()["sessions"], "the second sees its session")
        self.assertEqual(self.program.status()["sessions"], [])

    def test_says_in_one_line_that_it_does_not_run_however_its_threads_are_scheduled(self):
        before = os.sched_getaffinity(0)
        self.addCleanup(os.sched_setaffinity, 0, before)
        os.sched_setaffinity(0, {min(before)})
        error = "Nubble is not running.\n"
        for command in ["hide", "notes start", "notes stop", "restart", "quit"] * 3:
            self.assertEqual(self.check(*command.split(), status=NOT_RUNNING, error=error), "")
        self.assertIn('"source": "read"', self.check("status", "--json", status=NOT_RUNNING, error=error))
        self.assertEqual(self.program.instances(), [])

    def test_works_or_is_refused_in_one_line_without_a_display_or_a_bus(self):
        bare = {key: value for key, value in self.desktop.env.items() if key == "PATH" or key.endswith("SAN_OPTIONS")}
        run = functools.partial(self.program.run, env=bare)

        for option in ("--help", "--version"):
            self.assertRegex(run(option).stdout, "[Nn]ubble")
        for arguments in (["--bogus"], ["dance"], ["--json"], ["--home", "/nowhere/at/all"]):
            self.check_fails(run(*arguments), "", WRONG_USAGE)
        self.home.record(os.getpid(), status="waiting", name="Rake the leaves", nameSource="user")
        report = json.loads(run("status", "--json").stdout)
        self.assertEqual(report.keys(), {"source", "activity", "sessions", "usage"})
        self.assertEqual((report["source"], report["activity"]), ("read", "waiting"))
        self.assertEqual([each["word"] for each in report["sessions"]], ["waiting"])
        self.assertIn("Rake the leaves", run("status").stdout)
        self.check_fails(run(), "display")
        with open("/dev/full", "wb") as full:
            for command in (["--help"], ["--version"], ["status"]):
                answer = subprocess.run(
                    [PROGRAM, *self.program.home, *command], stdout=full, stderr=subprocess.PIPE, check=False)
                self.assertEqual((answer.returncode, answer.stderr.count(b"\n")), (FAILED, 1))
        for missing in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS"):
            env = self.desktop.env | {missing: ""}
            del env["QT_QPA_PLATFORM"]
            self.check_fails(self.program.run("show", env=env), "there is no ")
        self.assertEqual(self.program.instances(), [])

    def test_is_started_by_a_command_and_shares_nothing_with_the_caller(self):
        for command, mode, before in [
                ("show", "collapsed", "false"), ("toggle", "collapsed", "true"), ("sessions", "sessions", "false")]:
            self.home.preferences(placement_visible=before)
            self.check(command)  # which ends only when nobody holds the other ends of its pipes
            pid = self.program.only_instance()
            self.assertEqual(self.descriptors(pid), {"/dev/null"})
            self.assertEqual(os.getsid(pid), os.getpgid(pid))
            self.assertNotEqual(os.getsid(pid), os.getsid(0))
            self.program.until_panel(visible=True, mode=mode)
            self.program.end_all()
        for command in ("ask", "search"):
            self.check_fails(self.program.run(command), "is off")
        self.assertEqual(self.program.instances(), [])

    def test_is_one_instance_when_several_commands_start_it_at_once(self):
        commands = [
            subprocess.Popen([PROGRAM, *self.program.home, command], env=self.desktop.env, stderr=subprocess.PIPE)
            for command in ("toggle", "show", "toggle", "sessions")]
        self.assertEqual([(each.communicate()[1], each.returncode) for each in commands], [(b"", DONE)] * 4)
        eventually(lambda: len(self.program.instances()) == 1, "all but one have ended")
        self.assertTrue(self.program.is_running())

    def test_starts_from_its_autostart_entry_and_removes_it_or_says_why_it_cannot(self):
        self.home = Home(self.home.path / ODD_NAME)
        self.program = self.nubble()
        entry = self.home.path / ".config/autostart/com.brevandel.nubble.desktop"
        for _ in range(2):
            self.check("autostart", "on")
        self.desktop.run("desktop-file-validate", str(entry))
        self.assertEqual(list(entry.parent.iterdir()), [entry])
        self.desktop.run("gio", "launch", str(entry))
        eventually(self.program.is_running, "the program answers")
        for _ in range(2):
            self.check("autostart", "off")
        entry.parent.rmdir()
        entry.parent.write_text("")
        for switch in ("on", "off"):
            self.check_fails(self.program.run("autostart", switch), "autostart")
