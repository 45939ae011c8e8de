"""The files that are installed beside the program: the distribution's validators, and that all tell the same."""

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


def output(*command, stdin=b""):
    return subprocess.run(command, input=stdin, capture_output=True, check=True, timeout=60).stdout


def words_of_help():
    """Every command, argument and long option, from the column that begins the lines of --help."""
    lines = re.findall(r"^  (\S.*)", output(PROGRAM, "--help").decode(), re.M)
    column = " ".join(re.split(r"\s{2,}", line)[0] for line in lines)
    return set(re.findall(r"(?<![\w-])(?:--)?[a-z]{2,}", column))


def words_of_manual():
    items = re.findall(r"^\.It (?:Cm|Fl) (.*)", (PACKAGING / "nubble.1").read_text(), re.M)
    text = re.sub(r"\bAr \S+|\bFl |", "", " ".join(items)).replace("\\-", "-")
    return {("-" + word if word.startswith("-") else word) for word in re.findall(r"-?[a-z]{2,}", text)}


def words_of_completion(shell):
    commands = {word for word in shell("nubble ") if not word.startswith("-")}
    return commands.union(
        shell("nubble --"), *(shell(f"nubble {word} ") | shell(f"nubble {word} --") for word in commands))


class WhatIsInstalled(unittest.TestCase):
    def test_is_valid(self):
        for command in (
                ["desktop-file-validate", PACKAGING / "com.brevandel.nubble.desktop"],
                ["appstreamcli", "validate", "--no-net", PACKAGING / "com.brevandel.nubble.metainfo.xml"],
                ["mandoc", "-T", "lint", "-W", "warning", PACKAGING / "nubble.1"]):
            answer = subprocess.run(command, capture_output=True, text=True, timeout=60, check=False)
            self.assertEqual(answer.returncode, 0, answer.stdout + answer.stderr)

    def test_knows_the_programs_commands_and_offers_those_that_can_come_next(self):
        known = words_of_help()
        self.assertLessEqual({"sessions", "status", "--json", "--home", "--help", "--version"}, known)
        self.assertEqual(words_of_manual(), known)
        for shell in (shells.bash, shells.fish, shells.zsh):
            with self.subTest(shell.__name__):
                self.assertEqual(words_of_completion(shell), known)
                self.assertEqual(shell("nubble notes st"), {"start", "stop"})
                self.assertEqual(shell("nubble --home /tmp autostart "), {"on", "off"})
                self.assertEqual(shell("nubble autostart on ") | shell("nubble ask sess"), set())
                self.assertIn("usr", {folder.strip("/") for folder in shell("nubble --home /us")})

    def test_has_the_programs_version_as_the_newest_release(self):
        metainfo = xml.etree.ElementTree.parse(PACKAGING / "com.brevandel.nubble.metainfo.xml")
        newest = metainfo.find("releases/release").get("version")
        self.assertEqual(output(PROGRAM, "--version").decode().split()[-1], newest)


class TheIcons(unittest.TestCase):
    EYES = ((0.40, 0.44), (0.68, 0.60), (0.63, 0.60))  # the last where the other eye's circle lies below
    MARK = ((0.40, 0.25), (0.70, 0.26), (0.30, 0.78), (0.78, 0.62))

    def alpha(self, name, places):
        """The opacity in percent at places from the upper left corner, in fractions of the size."""
        picture = output("rsvg-convert", "-w", "160", "-h", "160", ICONS / name)
        pixels = output("convert", "png:-", "-alpha", "extract", "-depth", "8", "gray:-", stdin=picture)
        return [round(pixels[int(y * 160) * 160 + int(x * 160)] / 2.55) for x, y in places]

    def test_for_trays_show_the_mark_with_holes_for_eyes_and_the_applications_is_a_tile(self):
        for name, inside in (("nubble", 100), ("nubble-hidden", 0)):
            self.assertEqual(
                self.alpha(f"symbolic/apps/com.brevandel.{name}-symbolic.svg", self.MARK + self.EYES),
                [inside] * len(self.MARK) + [100 - inside] * len(self.EYES))
        self.assertEqual(self.alpha("scalable/apps/com.brevandel.nubble.svg", ((0, 0), (0.5, 0.5))), [0, 100])

    def test_for_trays_are_seen_on_light_and_dark_panels_that_do_not_colour_them(self):
        def luminance(colour):
            parts = (((int(colour[i:i + 2], 16) / 255 + 0.055) / 1.055) ** 2.4 for i in (0, 2, 4))
            return sum(weight * part for weight, part in zip((0.2126, 0.7152, 0.0722), parts))

        for icon in (ICONS / "symbolic/apps").iterdir():
            drawing = icon.read_text()
            colour, = re.findall(r"color: #(\w{6});", drawing)
            self.assertEqual(re.findall(r'(?:fill|color|stroke|opacity)="[^"]*"', drawing), ['fill="currentColor"'])
            for ground in ("ffffff", "f0f0f0", "2e3436", "000000"):
                darker, lighter = sorted((luminance(colour), luminance(ground)))
                self.assertGreater((lighter + 0.05) / (darker + 0.05), 3.2, ground)
