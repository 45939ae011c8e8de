"""The Debian package of this build: judged by lintian, installed into an empty root and started from there."""

import configparser
import os
import pathlib
import re
import shlex
import subprocess

from program import DesktopTest


def run(*command, **env):
    answer = subprocess.run(
        command, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=120, check=False,
        env=os.environ | env)
    if answer.returncode != 0:
        raise AssertionError(f"{shlex.join(map(str, command))}:\n{answer.stdout}{answer.stderr}")
    return answer.stdout


def install(package, root):
    """Nobody needs to be root for it, and what the package depends on is there anyway, outside of that root."""
    for folder in ("info", "updates", "triggers"):
        (root / "var/lib/dpkg" / folder).mkdir(parents=True)
    (root / "var/lib/dpkg/status").touch()
    run("dpkg", f"--root={root}", "--log=/dev/null", "--force-not-root", "--force-depends", "--install", package,
        PATH=os.environ["PATH"] + ":/usr/sbin:/sbin")


class ThePackage(DesktopTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        config = os.environ["NUBBLE_BUILD"] + "/CPackConfig.cmake"
        run(os.environ["NUBBLE_CPACK"], "--config", config, "-B", cls.desktop.folder)
        cls.package, = cls.desktop.folder.glob("*.deb")
        cls.root = cls.desktop.folder / "root"
        install(cls.package, cls.root)
        cls.desktop.env["PATH"] = f"{cls.root}/usr/bin:{cls.desktop.env['PATH']}"
        cls.desktop.env["XDG_DATA_DIRS"] = f"{cls.root}/usr/share:/usr/share"
        cls.entry = configparser.ConfigParser(interpolation=None)
        cls.entry.read(cls.root / "usr/share/applications/com.brevandel.nubble.desktop")

    def start(self, section):
        return self.desktop.start(*shlex.split(self.entry[section]["Exec"]))

    def test_is_one_that_lintian_finds_no_fault_with(self):
        run("lintian", "--fail-on", "error,warning", self.package)

    def test_has_the_version_that_its_changelog_begins_with(self):
        changelog = pathlib.Path(__file__).parents[2] / "packaging/debian/changelog"
        self.assertEqual(
            run("dpkg-deb", "--field", self.package, "Version"),
            run("dpkg-parsechangelog", "--show-field", "Version", "--file", changelog))

    def test_starts_from_its_desktop_entry_whose_actions_reach_it(self):
        nubble = self.nubble()
        nubble.home = []  # the user's own, as the entry starts it
        nubble.process = self.start("Desktop Entry")
        nubble.until_panel(visible=True)
        process = pathlib.Path(f"/proc/{nubble.process.pid}")
        self.assertEqual(os.readlink(process / "exe"), str(self.root / "usr/libexec/nubble/nubble-panel"))
        self.assertEqual(
            ((process / "comm").read_text(), (process / "cmdline").read_text()),
            ("nubble\n", f"{self.root}/usr/bin/nubble\0"))
        toggle, sessions, following = self.entry.sections()[1:]
        for action, mode, visible, status in (
                (toggle, "collapsed", False, 0), (toggle, "collapsed", True, 0), (sessions, "sessions", True, 0),
                (following, "sessions", True, 1)):  # no session needs anybody
            self.assertEqual(self.start(action).wait(20), status)
            nubble.until_panel(mode=mode, visible=visible)
        self.assertEqual(nubble.quit(), 0)

    def test_has_its_icons_where_the_theme_looks_for_them(self):
        theme = pathlib.Path("/usr/share/icons/hicolor/index.theme").read_text()
        folders = re.search("^Directories=(.*)", theme, re.M)[1].split(",")
        icons = [icon for folder in folders for icon in (self.root / "usr/share/icons/hicolor" / folder).glob("*.svg")]
        name = self.entry["Desktop Entry"]["Icon"]
        self.assertEqual({icon.stem for icon in icons}, {name, f"{name}-symbolic", f"{name}-hidden-symbolic"})
