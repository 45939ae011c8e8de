"""The commands: what they do to the running instance, starting one first, and their exit statuses."""

import os
import pathlib
import subprocess
import unittest

from desktop import eventually
from program import PROGRAM, DesktopTest, Home, Nubble, run_nubble

DONE, FAILED, WRONG_USAGE, NOT_RUNNING = range(4)
ODD_NAME = "a 'b' \"c\" $HOME `d` \\e 100%f = ~ü\t\n"


class CommandTest(DesktopTest):
    """`nubble` is the program of this test's home, which does not run yet."""

    def setUp(self):
        super().setUp()
        self.nubble = Nubble(self.desktop, self.home)
        self.addCleanup(self.nubble.end_all)

    def check(self, *arguments, status=DONE, error=""):
        answer = self.nubble.run(*arguments)
        self.assertEqual((answer.returncode, answer.stderr), (status, error), arguments)
        return answer.stdout


class TheCommands(CommandTest):
    def test_reach_the_running_instance(self):
        self.nubble.start()
        for command, visible in [("toggle", False), ("toggle", True), ("hide", False), ("hide", False), ("show", True)]:
            self.check(command)
            self.assertEqual(self.nubble.panel()["visible"], visible, command)
        self.check("hide")
        self.check("sessions")
        self.assertEqual((self.nubble.panel()["visible"], self.nubble.panel()["mode"]), (True, "sessions"))

    def test_pass_on_why_an_add_on_refuses(self):
        self.nubble.start()
        for arguments, title in [
                (["ask"], "Ask Claude About Screen"), (["search"], "Search Chats"),
                (["notes", "start"], "Meeting Recorder"), (["notes", "stop"], "Meeting Recorder")]:
            answer = self.nubble.run(*arguments)
            self.assertEqual(answer.returncode, FAILED)
            self.assertRegex(answer.stderr, rf'\Anubble: [^\n]*"{title}" is off[^\n]*\n\Z')

    def test_take_any_question(self):
        self.nubble.start()
        for words in ([""], ["x" * 100_000], ["--", "--why", "-h"], ["ü\n\t\x1b"], [b"\xff\xfe\xed\xa0\x80"]):
            answer = self.nubble.run("ask", *words)
            self.assertEqual(answer.returncode, FAILED)
            self.assertIn("is off", answer.stderr)

    def test_restart_and_end_it(self):
        self.nubble.start()
        self.check("hide")
        self.check("restart")
        self.assertEqual(self.nubble.wait(), DONE)
        self.assertFalse(self.nubble.panel()["visible"])  # the successor is there, and is as it was left
        self.check("start")
        self.assertEqual((len(self.nubble.instances()), self.nubble.panel()["visible"]), (1, False))
        self.check("quit")
        eventually(lambda: not self.nubble.instances(), "it has ended")

    def test_say_one_line_however_the_threads_are_scheduled(self):
        before = os.sched_getaffinity(0)
        self.addCleanup(os.sched_setaffinity, 0, before)
        os.sched_setaffinity(0, {min(before)})
        for _ in range(15):
            self.check("hide", status=NOT_RUNNING, error="Nubble is not running.\n")

    def test_say_that_nubble_is_not_running(self):
        for arguments in (["hide"], ["notes", "start"], ["notes", "stop"], ["restart"], ["quit"]):
            self.assertEqual(self.check(*arguments, status=NOT_RUNNING, error="Nubble is not running.\n"), "")
        self.assertIn(
            '"source": "read"', self.check("status", "--json", status=NOT_RUNNING, error="Nubble is not running.\n"))
        self.assertEqual(self.nubble.instances(), [])


class StartingFirst(CommandTest):
    def test_leaves_an_instance_that_shares_nothing_with_the_caller(self):
        for command, mode in [("show", "collapsed"), ("toggle", "collapsed"), ("sessions", "sessions")]:
            with self.subTest(command=command):
                self.home.preferences(placement_visible="false")
                # Ends only when nobody holds the other ends of its pipes.
                self.check(command)
                [pid] = self.nubble.instances()
                process = pathlib.Path("/proc", str(pid))
                self.assertEqual({os.readlink(process / "fd" / each) for each in "012"}, {"/dev/null"})
                self.assertEqual(os.getsid(pid), os.getpgid(pid))
                self.assertNotEqual(os.getsid(pid), os.getsid(0))
                self.nubble.until_panel(visible=True, mode=mode)
                self.nubble.end_all()

    def test_asks_the_add_on_afterwards(self):
        for command in ("ask", "search"):
            answer = self.nubble.run(command)
            self.assertEqual(answer.returncode, FAILED)
            self.assertIn("is off", answer.stderr)
        self.assertEqual(len(self.nubble.instances()), 1)

    def test_by_several_commands_at_once_leaves_one_instance(self):
        commands = [
            subprocess.Popen([PROGRAM, *self.nubble.home, command], env=self.desktop.env, stderr=subprocess.PIPE)
            for command in ("toggle", "show", "toggle", "sessions")]
        self.assertEqual([(each.communicate()[1], each.returncode) for each in commands], [(b"", DONE)] * 4)
        eventually(lambda: len(self.nubble.instances()) == 1, "all but one have ended")
        self.assertTrue(self.nubble.is_running())

    def test_is_refused_at_once_without_a_display_or_a_bus(self):
        for missing in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS"):
            env = self.desktop.env | {missing: ""}
            del env["QT_QPA_PLATFORM"]
            answer = run_nubble(*self.nubble.home, "show", env=env)
            self.assertEqual(answer.returncode, FAILED)
            self.assertRegex(answer.stderr, r"\Anubble: there is no [^\n]*\n\Z")
        self.assertEqual(self.nubble.instances(), [])


class Autostart(CommandTest):
    def setUp(self):
        super().setUp()
        self.home = Home(self.home.path / ODD_NAME)
        self.nubble = Nubble(self.desktop, self.home)
        self.addCleanup(self.nubble.end_all)
        self.entry = self.home.path / ".config/autostart/com.brevandel.nubble.desktop"

    def test_writes_an_entry_that_starts_this_program_and_removes_it(self):
        for _ in range(2):
            self.check("autostart", "on")
        self.desktop.run("desktop-file-validate", str(self.entry))
        self.assertEqual([each.name for each in self.entry.parent.iterdir()], [self.entry.name])
        self.desktop.run("gio", "launch", str(self.entry))
        eventually(self.nubble.is_running, "the program answers")
        for _ in range(2):
            self.check("autostart", "off")
        self.assertEqual(list(self.entry.parent.iterdir()), [])

    def test_says_in_one_line_why_it_cannot(self):
        self.entry.parent.write_text("")
        for switch in ("on", "off"):
            answer = self.nubble.run("autostart", switch)
            self.assertEqual(answer.returncode, FAILED)
            self.assertRegex(answer.stderr, r"\Anubble: [^\n]*autostart[^\n]*\n\Z")


if __name__ == "__main__":
    unittest.main()
