"""The program as a process: its command line, one instance per home, and its end."""

import json
import os
import signal
import subprocess
import tempfile
import time
import unittest

from gi.repository import Gio, GLib

from desktop import SCREEN, eventually
from program import PROGRAM, DesktopTest, Home, Nubble, run_nubble


class TheCommandLine(DesktopTest):
    def run_without_desktop(self, *arguments):
        bare = {key: value for key, value in self.desktop.env.items() if key == "PATH" or key.endswith("SAN_OPTIONS")}
        return run_nubble("--home", str(self.home.path), *arguments, env=bare)

    def test_helps_and_names_its_version_without_a_display(self):
        for option in ("--help", "--version"):
            answer = self.run_without_desktop(option)
            self.assertEqual((answer.returncode, answer.stderr), (0, ""))
            self.assertIn("nubble", answer.stdout)

    def test_refuses_what_it_does_not_know_in_one_line(self):
        for arguments in (["--bogus"], ["dance"], ["--json"], ["--home", "/nowhere/at/all"]):
            answer = self.run_without_desktop(*arguments)
            self.assertEqual(answer.returncode, 2)
            self.assertRegex(answer.stderr, r"\Anubble: [^\n]+\n\Z")

    def test_reads_the_status_itself_without_an_instance_display_or_bus(self):
        self.home.record(os.getpid(), status="waiting", name="Rake the leaves", nameSource="user")
        report = json.loads(self.run_without_desktop("status", "--json").stdout)
        self.assertEqual((report["source"], report["activity"]), ("read", "idle"))
        self.assertEqual([each["word"] for each in report["sessions"]], ["waiting"])
        self.assertNotIn("panel", report)
        self.assertIn("Rake the leaves", self.run_without_desktop("status").stdout)

    def test_does_not_start_without_a_display(self):
        answer = self.run_without_desktop()
        self.assertEqual(answer.returncode, 1)
        self.assertRegex(answer.stderr, r"\Anubble: [^\n]*display[^\n]*\n\Z")


class TheInstance(DesktopTest):
    def test_is_the_only_one_and_shows_its_panel_when_another_is_started(self):
        self.home.preferences(placement_visible="false")
        nubble = self.start_nubble()
        self.assertFalse(nubble.panel()["visible"])
        second = nubble.run()
        self.assertEqual((second.returncode, second.stderr), (0, ""))
        nubble.until_panel(visible=True)
        eventually(
            lambda: max(self.desktop.pixel(SCREEN[0] - 1, SCREEN[1] / 2)) < 32, "the panel is on the screen")
        self.assertEqual(nubble.instances(), [nubble.process.pid])

    def test_is_the_only_one_without_a_bus_too(self):
        nubble = Nubble(self.desktop, self.home)
        self.addCleanup(nubble.end_all)
        env = self.desktop.env | {"DBUS_SESSION_BUS_ADDRESS": ""}
        nubble.process = subprocess.Popen([PROGRAM, *nubble.home], stdin=subprocess.DEVNULL, env=env)
        eventually(self.desktop.nubble_windows, "its panel is there")
        second = run_nubble(*nubble.home, env=env)
        self.assertEqual(second.returncode, 1)
        self.assertRegex(second.stderr, r"\Anubble: Nubble runs already[^\n]*\n\Z")
        self.assertEqual(nubble.instances(), [nubble.process.pid])

    def test_answers_while_other_programs_flood_it_with_requests(self):
        self.home.preferences(addon_ask="true")
        nubble = self.start_nubble()
        question = GLib.Variant("(a{sv})", ({"question": GLib.Variant("s", "x" * 1000)},))
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        bus = Gio.DBusConnection.new_for_address_sync(
            self.desktop.env["DBUS_SESSION_BUS_ADDRESS"], flags, None, None)
        asking, answering = time.process_time(), nubble.processor_time()
        for _ in range(10_000):
            bus.emit_signal(None, "/", "com.brevandel.nubble", "ask", question)
        self.assertEqual(nubble.run("hide").returncode, 0)
        nubble.until_panel(visible=False)
        self.assertLess(nubble.processor_time() - answering, 10 * (time.process_time() - asking))
        bus.close_sync(None)

    def test_of_another_home_is_another_one(self):
        first = self.start_nubble()
        self.home = Home(tempfile.mkdtemp(dir=self.desktop.folder))
        second = self.start_nubble()
        self.home.record(os.getpid())
        eventually(lambda: second.status()["sessions"], "the second sees its session")
        self.assertEqual(first.status()["sessions"], [])

    def test_ends_as_by_quit_when_it_is_asked_to_by_a_signal(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            nubble = self.start_nubble()
            nubble.process.send_signal(number)
            self.assertEqual(nubble.wait(), 0)
            self.assertEqual(nubble.status()["source"], "read")


if __name__ == "__main__":
    unittest.main()
