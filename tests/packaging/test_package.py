"""The Debian package of this build: judged by lintian, installed into an empty root and started from there."""

import configparser
import json
import os
import pathlib
import shlex
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "desktop"))
from desktop import end, eventually  # noqa: E402  (it lies in another folder)
from program import DesktopTest, run_nubble  # noqa: E402  (it lies in another folder)

ICONS = pathlib.Path("usr/share/icons/hicolor")


def run(*command, **env):
    answer = subprocess.run(
        command, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=120, check=False,
        env=os.environ | env)
    if answer.returncode != 0:
        raise AssertionError(f"{shlex.join(map(str, command))}:\n{answer.stdout}{answer.stderr}")
    return answer.stdout


def build(folder):
    run(os.environ["NUBBLE_CPACK"], "--config", os.environ["NUBBLE_BUILD"] + "/CPackConfig.cmake", "-B", folder)
    package, = folder.glob("*.deb")
    return package


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
        folder = pathlib.Path(tempfile.mkdtemp(dir=cls.desktop.folder))
        cls.package = build(folder)
        cls.root = folder / "root"
        install(cls.package, cls.root)
        cls.desktop.env["PATH"] = f"{cls.root}/usr/bin:{cls.desktop.env['PATH']}"
        cls.desktop.env["XDG_DATA_DIRS"] = f"{cls.root}/usr/share:/usr/share"
        cls.entry = configparser.ConfigParser(interpolation=None)
        cls.entry.read(cls.root / "usr/share/applications/com.brevandel.nubble.desktop")

    def start(self, section):
        command = shlex.split(self.entry[section]["Exec"])
        return subprocess.Popen(command, stdin=subprocess.DEVNULL, env=self.desktop.env)

    def status(self):
        return json.loads(run_nubble("status", "--json", env=self.desktop.env).stdout)

    def until_panel(self, **wanted):
        eventually(lambda: wanted.items() <= self.status().get("panel", {}).items(), f"panel {wanted}")

    def test_is_one_that_lintian_finds_no_fault_with(self):
        run("lintian", "--fail-on", "error,warning", self.package)

    def test_has_the_version_that_its_changelog_begins_with(self):
        changelog = pathlib.Path(__file__).parents[2] / "packaging/debian/changelog"
        self.assertEqual(
            run("dpkg-deb", "--field", self.package, "Version"),
            run("dpkg-parsechangelog", "--show-field", "Version", "--file", changelog))

    def test_starts_from_its_desktop_entry_whose_actions_reach_it(self):
        program = self.start("Desktop Entry")
        self.addCleanup(end, program)
        eventually(lambda: self.status()["source"] == "running", "the program answers")
        self.assertEqual(os.readlink(f"/proc/{program.pid}/exe"), str(self.root / "usr/bin/nubble"))
        self.until_panel(visible=True)
        for visible in (False, True):
            self.assertEqual(self.start("Desktop Action toggle").wait(20), 0)
            self.until_panel(visible=visible)
        self.assertEqual(self.start("Desktop Action sessions").wait(20), 0)
        self.until_panel(mode="sessions")
        self.assertEqual(end(program), 0)

    def test_has_its_icons_where_the_theme_looks_for_them(self):
        theme = configparser.ConfigParser(interpolation=None, strict=False)
        theme.read("/" / ICONS / "index.theme")
        folders = theme["Icon Theme"]["Directories"].split(",")
        top = self.root / ICONS
        icons = {icon.stem: str(icon.parent.relative_to(top)) for icon in top.glob("**/*.svg")}
        name = self.entry["Desktop Entry"]["Icon"]
        self.assertEqual(icons.keys(), {name, f"{name}-symbolic", f"{name}-hidden-symbolic"})
        self.assertLessEqual(set(icons.values()), set(folders))


if __name__ == "__main__":
    unittest.main()
