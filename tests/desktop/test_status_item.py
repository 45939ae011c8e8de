"""The status item on both kinds of desktop: told over the session bus what to show, and embedding an X11 window."""

import contextlib
import os
import pathlib

from Xlib.error import BadWindow

from desktop import SCREEN, eventually
from program import DesktopTest
from status_item_host import StatusItemHost, find, shown


class OnADesktopThatDrawsIt(DesktopTest):
    def start(self, **env):
        nubble = self.start_nubble(**env)  # before the host
        host = StatusItemHost(self.desktop.env["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(host.close)
        eventually(lambda: host.items, "the item is there")
        return nubble, host

    def test_is_as_bright_as_the_panel_is_visible_and_toggles_it(self):
        (self.home.path / "share").mkdir()
        (self.home.path / "share/icons").symlink_to(pathlib.Path(__file__).parents[2] / "resources/icons")
        nubble, host = self.start(XDG_DATA_DIRS=f"{self.home.path}/share:/usr/share")
        self.assertEqual((host.tool_tip(), host.property("Status")), ("Hide Nubble", "Active"))
        self.assertEqual(host.property("IconName"), "com.brevandel.nubble-symbolic")  # which desktops colour themselves
        self.assertLessEqual({16: 255, 22: 255, 24: 255, 32: 255, 48: 255}.items(), host.opacities().items())
        host.click()
        nubble.until_panel(visible=False)
        eventually(lambda: host.tool_tip() == "Show Nubble", "the tool tip follows")
        self.assertEqual(host.opacities()[22], round(255 * 0.6))
        self.assertEqual(host.property("IconName"), "com.brevandel.nubble-hidden-symbolic")
        nubble.run()  # shown from elsewhere
        eventually(lambda: host.tool_tip() == "Hide Nubble", "the item follows the panel")
        self.assertEqual(host.opacities()[22], 255)
        host.click("ContextMenu")
        self.desktop.until_menu()
        self.desktop.key("Escape")
        self.desktop.until_no_menu()

    def test_has_a_menu_that_is_new_each_time(self):
        self.home.preferences(addon_search="true")
        nubble, host = self.start(PATH=os.devnull)
        menu = host.open_menu()
        self.assertEqual(
            [shown(entry) for entry in menu[:6]],
            ["Search Chats… Control+Alt+Space", "-", "[x] Hide Notch", "-", "[ ] Lock Position",
             "Move to Edge {[x] Right, [ ] Left, [ ] Top, [ ] Bottom}"])
        self.assertEqual(shown(find(menu, "Quenwick")), "[ ] Quenwick — Needs the Quenwick app, opened at least once.")
        host.choose(menu, "Search Chats")
        eventually(lambda: nubble.status()["search"]["open"], "the search opens")
        self.desktop.key("Escape")
        host.choose(menu, "Lock Position")
        nubble.until_panel(locked=True)
        eventually(
            lambda: shown(find(host.read_menu(), "Lock Position")) == "[x] Lock Position",
            "the closed menu follows, for desktops that show what they have read last")
        menu = host.open_menu()
        self.assertEqual(host.open_menu(), menu)  # the same entries while nothing has changed
        self.assertEqual(
            shown(find(menu, "Move to Edge")), "Move to Edge {([x] Right), ([ ] Left), ([ ] Top), ([ ] Bottom)}")

    def test_switches_an_addon_by_a_restart_and_quits(self):
        nubble, host = self.start()
        host.choose(host.open_menu(), "Meeting Recorder", times=2)
        self.assertEqual(nubble.wait(), 0)
        eventually(lambda: len(host.items) == 2, "the successor's item is there")
        nubble.only_instance()
        menu = host.open_menu()
        self.assertIn("[x] Meeting Recorder", shown(find(menu, "Meeting Recorder")))
        host.choose(menu, "Quit Nubble")
        eventually(lambda: not nubble.instances(), "the successor has quit")


class InAnX11Tray(DesktopTest):
    def start_tray(self):
        tray = self.desktop.start(
            "trayer", "--edge", "bottom", "--align", "left", "--widthtype", "request", "--height", "32")
        self.addCleanup(tray.wait)
        self.addCleanup(tray.kill)
        return tray

    def icon(self):
        def find_icon():
            for window, parent, size in self.desktop.nubble_windows():
                if parent != self.desktop.root:
                    with contextlib.suppress(BadWindow):  # trays make room for it again and again
                        at = self.desktop.root.translate_coords(window, 0, 0)
                        if at.x >= 0 and at.y + size.height <= SCREEN[1]:
                            return at.x, at.y, size.width, size.height
            return None

        return eventually(find_icon, "the icon is in the tray")

    def contrast(self):
        levels = [sum(pixel) for row in self.desktop.pixels(*self.icon()) for pixel in row]
        return max(levels) - min(levels)

    def test_comes_when_a_tray_comes_toggles_the_panel_and_fades(self):
        nubble = self.start_nubble()
        tray = self.start_tray()
        self.icon()
        tray.kill()
        tray.wait()
        self.start_tray()
        contrast = eventually(self.contrast, "the icon is drawn")
        x, y, width, height = self.icon()
        self.desktop.click(x + width / 2, y + height / 2)
        nubble.until_panel(visible=False)
        eventually(lambda: 0 < self.contrast() < contrast * 0.8, "the icon has faded")
        self.desktop.click(x + width / 2, y + height / 2)
        nubble.until_panel(visible=True)
        eventually(lambda: self.contrast() == contrast, "the icon is back")

    def test_opens_its_menu_whose_keys_work(self):
        self.start_tray()
        nubble = self.start_nubble()
        x, y, width, height = self.icon()
        self.desktop.click(x + width / 2, y + height / 2, button=3)
        left, _, _, bottom = self.card_of_menu()
        self.assertLessEqual(abs(left - x - width / 2) + abs(bottom - y - height / 2), 2)  # where the pointer is
        for key in ("Down", "Down", "Return"):  # "Hide Notch", "Lock Position"
            self.desktop.key(key)
        nubble.until_panel(locked=True)
        self.desktop.until_no_menu()
        self.desktop.click(x + 3, y + 3, button=3)  # elsewhere, for it is no double click
        self.desktop.until_menu()
        self.desktop.key("Control_L", "q")
        eventually(lambda: not nubble.instances(), "the program has quit")
