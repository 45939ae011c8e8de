"""A session needs its user: the desktop's notices tell of it, and a command and a key lead to it."""

import os

from desktop import end, eventually
from program import TerminalTest
from status_item_host import StatusItemHost


class TheUserIsCalled(TerminalTest):
    def setUp(self):
        super().setUp()
        self.host = StatusItemHost(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(self.host.close)

    def set(self, pid, status, title):
        self.home.record(pid, status=status, name=title, nameSource="user")

    def until_shown(self, *titles):
        eventually(
            lambda: sorted(title for title, _ in self.host.messages.copy().values()) == sorted(titles),
            lambda: f"{titles} are shown, it is {self.host.messages}")

    def test_by_a_notice_unless_the_session_is_in_front_and_comes_to_it_by_a_click_or_the_command(self):
        self.set(self.pid, "busy", "Rake")
        nubble = self.start_nubble()
        eventually(lambda: nubble.status()["activity"] == "working", "the session is seen")
        self.set(self.pid, "waiting", "Rake")
        self.until_shown("Rake")
        self.host.click_message()
        self.desktop.until_active(self.terminal)
        self.until_shown()
        for status, state in (("busy", "working"), ("waiting", "waiting")):
            self.set(self.pid, status, "Rake")
            eventually(lambda: nubble.status()["sessions"][0]["state"] == state, "it is seen")
        self.set(os.getpid(), "waiting", "Mow")
        self.until_shown("Mow")
        self.activate(self.other)
        self.assertEqual(nubble.run("next").returncode, 0)
        self.desktop.until_active(self.terminal)
        answer = nubble.run("next")  # to the one that is not in front, and has no window
        self.assertEqual((answer.returncode, answer.stdout), (1, ""))
        self.assertRegex(answer.stderr, r"\Anubble: [^\n]+\n\Z")
        for pid in (os.getpid(), self.pid):
            self.set(pid, "busy", "Busy")
        self.until_shown()
        eventually(lambda: nubble.run("next").stderr == "nubble: no session needs you\n", "nobody waits")
        nubble.quit()
        self.assertEqual(nubble.run("next").returncode, 3)

    def test_once_for_a_hundred_that_wait_at_once_and_the_notice_goes_with_the_program(self):
        gardeners = [self.desktop.start("sleep", "1000") for _ in range(100)]
        for each in gardeners:
            self.addCleanup(end, each)
        nubble = self.start_nubble()
        for status in ("busy", "waiting"):
            for each in gardeners:
                self.set(each.pid, status, "Dig")
            eventually(lambda: len(nubble.status()["sessions"]) == 100, "all are seen")
        self.until_shown("100 sessions wait for you")
        self.host.click_message()
        nubble.until_panel(mode="sessions")
        self.until_shown()
        self.set(self.pid, "waiting", "Rake")
        self.until_shown("Rake")
        nubble.quit()
        self.until_shown()

    def test_by_nothing_when_that_is_switched_off_whether_or_not_the_program_runs(self):
        nubble = self.nubble()
        file = self.home.path / ".config/com.brevandel.nubble.conf"
        self.assertEqual(nubble.run("notifications", "off").returncode, 0)
        self.assertIn("notifications.waiting=false", file.read_text())
        nubble.start()
        self.assertEqual(nubble.status()["notifications"], {"waiting": False, "done": False})
        self.set(self.pid, "waiting", "Rake")
        eventually(lambda: nubble.status()["sessions"], "the session is seen")
        self.assertEqual(nubble.run("notifications", "on").returncode, 0)
        self.set(os.getpid(), "waiting", "Mow")
        self.until_shown("Mow")
        nubble.quit()
        self.assertIn("notifications.done=true", file.read_text())
        file.unlink()
        os.mkfifo(file)
        self.assertEqual(nubble.run("notifications", "off").returncode, 1)

    def test_a_key_of_the_users_own_leads_to_it(self):
        self.home.preferences(keys_next="Meta+F5")
        self.home.record(self.pid, status="waiting")
        nubble = self.start_nubble()
        eventually(lambda: nubble.status()["sessions"], "the session is seen")
        self.assertEqual(
            nubble.status()["hotKeys"], [{"keys": "Meta+F5", "action": "next", "registered": True}])
        self.desktop.key("Super_L", "F5")
        self.desktop.until_active(self.terminal)
