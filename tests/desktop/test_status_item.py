"""The status item on both kinds of desktop: told over the session bus what to show, and embedding an X11 window."""

import contextlib
import os
import pathlib
import unittest

from Xlib import X
from Xlib.error import BadWindow

from desktop import SCREEN, eventually
from program import DesktopTest
from status_item_host import StatusItemHost, find, shown


ICONS = pathlib.Path(__file__).parents[2] / "resources/icons"


def centre(rectangle):
    x, y, width, height = rectangle
    return x + width / 2, y + height / 2


class OnADesktopThatDrawsIt(DesktopTest):
    def start_host(self):
        host = StatusItemHost(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(host.close)
        return host

    def test_is_as_bright_as_the_panel_is_visible_and_toggles_it(self):
        nubble = self.start_nubble()
        host = self.start_host()  # comes after the program
        eventually(lambda: host.items, "the item is there")
        self.assertEqual((host.tool_tip(), host.property("Status")), ("Hide Nubble", "Active"))
        for size in (16, 22, 24, 32, 48):
            alpha = host.icon(size)
            self.assertEqual(alpha[int(size * 0.3)][size // 2], 255, size)
            self.assertEqual(alpha[int(size * 0.44)][int(size * 0.4)], 0, size)  # an eye
        host.click()
        nubble.until_panel(visible=False)
        eventually(lambda: host.tool_tip() == "Show Nubble", "the tool tip follows")
        self.assertEqual(host.icon(22)[6][11], round(255 * 0.45))
        nubble.run()  # shown from elsewhere
        eventually(lambda: host.tool_tip() == "Hide Nubble", "the item follows the panel")
        self.assertEqual(host.icon(22)[6][11], 255)

    def test_has_a_menu_that_is_new_each_time(self):
        host = self.start_host()
        self.home.preferences(addon_search="true", addon_ask="true")
        nubble = self.start_nubble(PATH=os.devnull)
        eventually(lambda: host.items, "the item is there")
        menu = host.open_menu()
        script = self.home.path / ".quib-live/quib-live.mjs"
        self.assertEqual([shown(entry) for entry in menu], [
            "Search Chats… Control+Alt+Space", "Ask Claude About Screen… Control+Alt+A", "-", "[x] Hide Notch", "-",
            "[ ] Lock Position", "Move to Edge {[x] Right, [ ] Left, [ ] Top, [ ] Bottom}", "Center on Edge", "-",
            shown(menu[9]), "-", "Refresh Everything Control+R", "Restart Nubble", "-",
            "Quit Nubble Control+Q"])
        switches = [shown(entry) for entry in menu[9][2]]
        self.assertEqual(switches[0], "[ ] Quenwick — Needs the Quenwick app, opened at least once.")
        self.assertRegex(switches[2], r"\A\[x\] Search Chats( — Needs yarnbin \(the `yarnbin` command\)\.)?\Z")
        self.assertRegex(switches[3], rf"\A\[ \] Meeting Recorder — Needs (Node\.js|the recorder script at {script})\.\Z")
        self.assertEqual(switches[4:], ["-", "(Nubble restarts to add or remove one.)"])
        host.choose(find(menu, "Lock Position"))
        nubble.until_panel(locked=True)
        def has_followed():
            return shown(host.read_menu()[5]).startswith("[x]")

        eventually(has_followed, "the closed menu follows, for desktops that show what they have read last")
        self.assertEqual(host.open_menu(), host.open_menu())  # the same entries while nothing has changed
        menu = [shown(entry) for entry in host.open_menu()]
        self.assertEqual(
            menu[5:8], ["[x] Lock Position", "Move to Edge {([x] Right), ([ ] Left), ([ ] Top), ([ ] Bottom)}",
                        "(Center on Edge)"])

    def test_names_the_installed_icons_which_desktops_colour_themselves(self):
        (self.home.path / "share").mkdir()
        (self.home.path / "share/icons").symlink_to(ICONS)
        host = self.start_host()
        self.start_nubble(XDG_DATA_DIRS=f"{self.home.path}/share:/usr/share")
        eventually(lambda: host.items, "the item is there")
        self.assertEqual(host.property("IconName"), "com.brevandel.nubble-symbolic")
        host.click()
        eventually(
            lambda: host.property("IconName") == "com.brevandel.nubble-hidden-symbolic", "the dim icon is named")

    def test_draws_the_menu_itself_when_it_is_asked_to(self):
        host = self.start_host()
        self.start_nubble()
        eventually(lambda: host.items, "the item is there")
        host.ask_for_menu()
        self.desktop.until_menu()
        self.desktop.key("Escape")
        eventually(lambda: not self.desktop.menus(), "the menu is closed")

    def test_switches_an_addon_by_a_restart_and_quits(self):
        host = self.start_host()
        nubble = self.start_nubble()
        eventually(lambda: host.items, "the item is there")
        menu = host.open_menu()
        notes = next(each for each in menu[6][2] if each[1]["label"].startswith("Meeting Recorder"))
        host.choose(notes[0], times=2)
        self.assertEqual(nubble.wait(), 0)
        eventually(lambda: len(host.items) == 2, "the successor's item is there")
        self.assertEqual(len(nubble.instances()), 1)
        menu = host.open_menu()
        self.assertIn("[x] Meeting Recorder", shown(menu[6]))
        host.choose(find(menu, "Quit Nubble"))
        eventually(lambda: not nubble.instances(), "the successor has quit")


class InAnX11Tray(DesktopTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.desktop.backdrop.window.configure(stack_mode=X.Below)

    def start_tray(self):
        tray = self.desktop.start(
            "trayer", "--edge", "bottom", "--align", "left", "--widthtype", "request", "--height", "32")
        self.addCleanup(self.end_tray, tray)
        return tray

    def end_tray(self, tray):
        tray.kill()
        tray.wait()

    def icon(self):
        """The rectangle of the icon on the screen, once it is embedded."""
        def find_icon():
            for window, parent, size in self.desktop.nubble_windows():
                if parent != self.desktop.root:
                    with contextlib.suppress(BadWindow):  # trays make room for it again and again
                        at = self.desktop.root.translate_coords(window, 0, 0)
                        return at.x, at.y, size.width, size.height
            return None

        return eventually(find_icon, "the icon is in the tray")

    def contrast(self, icon):
        levels = [sum(pixel) for row in self.desktop.pixels(*icon) for pixel in row]
        return max(levels) - min(levels)

    def test_toggles_the_panel_and_fades(self):
        self.start_tray()
        nubble = self.start_nubble()
        icon = self.icon()
        contrast = eventually(lambda: self.contrast(icon), "the icon is drawn")
        self.desktop.click(*centre(icon))
        nubble.until_panel(visible=False)
        eventually(lambda: 0 < self.contrast(icon) < contrast * 0.8, "the icon has faded")
        self.desktop.click(*centre(icon))
        nubble.until_panel(visible=True)
        eventually(lambda: self.contrast(icon) == contrast, "the icon is back")

    def test_opens_its_menu_whose_keys_work(self):
        self.start_tray()
        nubble = self.start_nubble()
        icon = self.icon()
        self.desktop.click(*centre(icon), button=3)
        menu = self.desktop.until_menu()
        self.assertGreaterEqual(menu.x, 0)
        self.assertLessEqual(menu.y + menu.height, SCREEN[1])
        for key in ("Down", "Down", "Return"):  # "Hide Notch", "Lock Position"
            self.desktop.key(key)
        nubble.until_panel(locked=True)
        eventually(lambda: not self.desktop.menus(), "the menu is closed")
        self.desktop.click(icon[0] + 3, icon[1] + 3, button=3)  # elsewhere, for it is no double click
        self.desktop.until_menu()
        self.desktop.key("Control_L", "q")
        eventually(lambda: not nubble.instances(), "the program has quit")

    def test_comes_when_a_tray_comes(self):
        self.start_nubble()
        tray = self.start_tray()
        self.icon()
        self.end_tray(tray)
        self.start_tray()
        self.icon()


if __name__ == "__main__":
    unittest.main()
