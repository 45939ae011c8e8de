"""The files that are installed beside the program: the distribution's validators, and that all tell the same."""

import configparser
import os
import pathlib
import re
import subprocess
import unittest
import xml.etree.ElementTree

import shells

PROGRAM = os.environ["NUBBLE_PROGRAM"]
ROOT = pathlib.Path(__file__).parents[2]
PACKAGING = ROOT / "packaging"
ICONS = ROOT / "resources/icons/hicolor"


def output(*command):
    return subprocess.run(command, capture_output=True, check=True, timeout=60).stdout


def words_of_help():
    """Every command, argument and long option, from the column that begins the lines of --help."""
    lines = output(PROGRAM, "--help").decode().split("\n")
    column = [re.split(r"\s{2,}", line.strip())[0] for line in lines if re.match(r"  \S", line)]
    return set(re.findall(r"(?<![\w-])(?:--)?[a-z]{2,}", " ".join(column)))


def words_of_manual():
    items = re.findall(r"^\.It (?:Cm|Fl) (.*)", (PACKAGING / "nubble.1").read_text(), re.M)
    text = re.sub(r"\bAr \S+|\bFl |", "", " ".join(items)).replace("\\-", "-")
    return {("-" + word if word.startswith("-") else word) for word in re.findall(r"-?[a-z]{2,}", text)}


def words_of_completion(shell):
    commands = shell("nubble ")
    commands = {word for word in commands if not word.startswith("-")}
    return commands.union(
        shell("nubble --"), *(shell(f"nubble {word} ") | shell(f"nubble {word} --") for word in commands))


class TheValidators(unittest.TestCase):
    def test_find_nothing(self):
        for command in (
                ["desktop-file-validate", PACKAGING / "com.brevandel.nubble.desktop"],
                ["appstreamcli", "validate", "--no-net", PACKAGING / "com.brevandel.nubble.metainfo.xml"],
                ["mandoc", "-T", "lint", "-W", "warning", PACKAGING / "nubble.1"]):
            with self.subTest(command[0]):
                answer = subprocess.run(command, capture_output=True, text=True, timeout=60, check=False)
                self.assertEqual(answer.returncode, 0, answer.stdout + answer.stderr)


class TheProgramsCommands(unittest.TestCase):
    def test_are_the_same_in_the_help_the_manual_and_each_shell(self):
        known = words_of_help()
        self.assertLessEqual({"sessions", "status", "--json", "--home", "--help", "--version"}, known)
        self.assertEqual(words_of_manual(), known)
        for shell in (shells.bash, shells.fish, shells.zsh):
            with self.subTest(shell.__name__):
                self.assertEqual(words_of_completion(shell), known)

    def test_are_those_of_the_desktop_entry(self):
        entry = configparser.ConfigParser(interpolation=None)
        entry.read(PACKAGING / "com.brevandel.nubble.desktop")
        actions = entry["Desktop Entry"]["Actions"].strip(";").split(";")
        self.assertEqual(entry.sections()[1:], [f"Desktop Action {name}" for name in actions])
        for section in entry.sections():
            name, *words = entry[section]["Exec"].split()
            self.assertEqual(name, "nubble")
            self.assertLessEqual(set(words), words_of_help())

    def test_have_the_version_of_the_newest_release(self):
        metainfo = xml.etree.ElementTree.parse(PACKAGING / "com.brevandel.nubble.metainfo.xml")
        newest = metainfo.find("releases/release").get("version")
        self.assertEqual(output(PROGRAM, "--version").decode().split()[-1], newest)


class TheShells(unittest.TestCase):
    def test_offer_what_can_come_next(self):
        for shell in (shells.bash, shells.fish, shells.zsh):
            with self.subTest(shell.__name__):
                self.assertEqual(shell("nubble notes st"), {"start", "stop"})
                self.assertEqual(shell("nubble --home /tmp autostart "), {"on", "off"})
                self.assertEqual(shell("nubble autostart on "), set())
                self.assertEqual(shell("nubble ask sess"), set())
                self.assertIn("usr", {folder.strip("/") for folder in shell("nubble --home /us")})


class TheIcons(unittest.TestCase):
    SIZE = 160
    EYES = ((0.40, 0.44), (0.68, 0.60), (0.63, 0.60))  # the last where the other eye's circle lies below
    MARK = ((0.40, 0.25), (0.70, 0.26), (0.30, 0.78), (0.82, 0.68))

    def alpha(self, name, places, size=SIZE):
        """The opacity in percent at places from the upper left corner, in fractions of the size."""
        picture = output("rsvg-convert", "-w", str(size), "-h", str(size), ICONS / name)
        pixels = subprocess.run(
            ["convert", "png:-", "-depth", "8", "rgba:-"], input=picture, capture_output=True, check=True).stdout
        self.assertEqual(len(pixels), 4 * size * size)
        return [round(pixels[4 * (int(y * size) * size + int(x * size)) + 3] / 2.55) for x, y in places]

    def test_for_trays_show_the_mark_with_holes_for_eyes(self):
        for name, opacity in (("nubble", 100), ("nubble-hidden", 45)):
            file = f"symbolic/apps/com.brevandel.{name}-symbolic.svg"
            self.assertEqual(self.alpha(file, self.MARK), [opacity] * len(self.MARK))
            self.assertEqual(self.alpha(file, self.EYES), [0] * len(self.EYES))

    def test_of_the_application_is_a_tile_at_every_size(self):
        for size in (16, 48, 256):
            corner_and_middle = self.alpha("scalable/apps/com.brevandel.nubble.svg", ((0, 0), (0.5, 0.5)), size)
            self.assertEqual(corner_and_middle, [0, 100])


if __name__ == "__main__":
    unittest.main()
