"""The session bus as the program meets it: gone and back, stuck, and with the name in other hands."""

import contextlib
import signal
import subprocess

from gi.repository import Gio, GLib

from desktop import end, eventually
from program import PROGRAM, DesktopTest
from status_item_host import StatusItemHost, connect


class TheSessionBus(DesktopTest):
    """Each test has a bus of its own, at an address that stays."""

    def setUp(self):
        super().setUp()
        self.address = self.desktop.env["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.home.path}/bus"
        self.bus = self.start_bus()
        self.addCleanup(lambda: end(self.bus))
        self.program = self.start_nubble()

    def start_bus(self):
        (self.home.path / "bus").unlink(missing_ok=True)
        self.desktop.announced(
            "dbus-daemon", "--session", "--nofork", f"--address={self.address}", "--print-address=FD")
        return self.desktop.services.pop()

    def host(self):
        host = StatusItemHost(self.address)
        self.addCleanup(self.close, host)
        eventually(lambda: host.items, "the status item is there")
        return host

    @staticmethod
    def close(host):
        with contextlib.suppress(GLib.Error):  # its bus has ended
            host.close()

    def check_fails(self, why, *arguments):
        answer = self.program.run(*arguments)
        self.assertEqual((answer.returncode, answer.stdout, answer.stderr), (1, "", f"nubble: {why}\n"), arguments)

    def test_may_end_and_come_back_and_a_second_start_makes_no_second_one(self):
        self.home.preferences(addon_ask="true")
        self.program.run("restart")
        self.program.wait()
        self.host()
        end(self.bus)
        starting = subprocess.Popen([PROGRAM, *self.program.home, "start"], env=self.desktop.env)
        self.bus = self.start_bus()
        self.assertEqual(starting.wait(20), 0)
        self.assertTrue(self.program.is_running())
        self.program.only_instance()
        self.host().click()
        self.program.until_panel(visible=False)
        question = GLib.Variant("(a{sv})", ({"question": GLib.Variant("s", "Why?")},))
        bus = connect(self.address)
        bus.emit_signal(None, "/", "com.brevandel.nubble", "ask", question)
        eventually(lambda: self.program.status()["ask"]["open"], "the question has arrived")
        bus.close_sync(None)

    def test_may_be_stuck_without_stopping_a_command_or_the_end(self):
        self.host()
        self.bus.send_signal(signal.SIGSTOP)
        self.addCleanup(self.bus.send_signal, signal.SIGCONT)
        for arguments in (["status"], ["hide"], ["start"], ["ask", "why"], []):
            self.check_fails("the session bus does not answer", *arguments)
        self.desktop.click(*self.program.ring(), button=3)  # which tells the bus a lot
        self.desktop.until_menu()
        self.assertEqual(self.program.quit(), 0)

    def test_may_have_the_name_of_another_program_or_of_a_silent_one(self):
        bus = connect(self.address)
        names = bus.call_sync(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListNames", None, None, 0, -1, None)
        name, = (each for each in names.unpack()[0] if each.startswith("com.brevandel.nubble.home_"))
        self.program.process.send_signal(signal.SIGSTOP)
        self.check_fails("the running instance does not answer", "status")
        self.program.process.send_signal(signal.SIGCONT)
        self.program.quit()
        Gio.bus_own_name_on_connection(bus, name, Gio.BusNameOwnerFlags.NONE, None, None)
        bus.flush_sync(None)
        for arguments in (["start"], ["status"], []):
            self.check_fails(
                "another program, or another version, has Nubble's name on the session bus", *arguments)
        self.assertEqual(self.program.instances(), [])
        bus.close_sync(None)
