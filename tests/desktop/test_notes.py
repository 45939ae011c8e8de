"""Meeting notes: a recorder that a real `node` runs, from the bus signal to its log, and beyond the program's end."""

import contextlib
import os
import pathlib
import signal

from desktop import eventually
from program import DesktopTest

RECORDER = """
import fs from 'node:fs';
process.on('SIGINT', () => {
    process.stdout.write('updated: The-end' + String.fromCharCode(10));
    console.log('done. All written.');
    fs.writeFileSync('notes', 'final');
    process.exit(0);
});
fs.writeFileSync('pid', String(process.pid));
console.log('10:32:05 AM tab "Week 12"');
console.log('recording');
console.log('next 1700000000000');
setInterval(() => {}, 1000);
"""
LINK = "https://docs.google.com/document/d/1a/edit?tab=t.7"


class MeetingNotes(DesktopTest):
    def setUp(self):
        super().setUp()
        self.folder = self.home.path / ".quib-live"
        self.folder.mkdir()
        (self.folder / "quib-live.mjs").write_text(RECORDER)
        self.home.preferences(addon_notes="true", meetingNotes_link=f'"{LINK}"')
        self.addCleanup(self.end_recorder)

    def end_recorder(self):
        with contextlib.suppress(OSError):
            os.kill(self.recorder(), signal.SIGKILL)

    def recorder(self):
        return int((self.folder / "pid").read_text())

    def log(self):
        return (self.folder / "notch.log").read_text().splitlines()

    def signal(self, action):
        self.desktop.run(
            "gdbus", "emit", "--session", "--object-path", "/", "--signal", "com.brevandel.nubble.notes",
            f"{{'action': <'{action}'>}}")

    def has_started(self, nubble):
        """On a machine that is too busy to look for other recorders in time it is refused, and asked for again."""
        notes = nubble.status()["notes"]
        if notes["status"].startswith("Couldn't find out"):
            self.signal("start")
        return notes["phase"] == "recording"

    def start_recording(self, nubble):
        eventually(lambda: nubble.run("notes", "start").returncode == 0, "it records")

    def test_is_started_and_stopped_from_elsewhere(self):
        nubble = self.start_nubble()
        nubble.until("notes", phase="idle", link=True, others=[], status="")
        self.signal("start")
        eventually(lambda: self.has_started(nubble), "it records")
        nubble.until("notes", phase="recording", tabTitle="Week 12", nextUpdate=1700000000000, lastUpdate=None,
                     status="Recording — first notes in about 3 minutes.")
        again = nubble.run("notes", "start")
        self.assertEqual((again.returncode, again.stderr), (1, "nubble: Already running — stop it first.\n"))
        self.signal("stop")
        nubble.until("notes", phase="idle", status="done. All written.", startedAt=None)
        log = self.log()
        self.assertEqual(log[0], f"start pressed: phase=idle others=[] link={LINK}")
        self.assertEqual(log[-2:], ["updated: The-end", "done. All written."])
        self.assertIn("stop pressed: phase=recording running=true others=[]", log)

    def test_the_notes_are_finished_when_the_program_ends(self):
        nubble = self.start_nubble()
        self.start_recording(nubble)
        nubble.until("notes", tabTitle="Week 12")
        self.assertEqual(nubble.quit(), 0)
        eventually((self.folder / "notes").exists, "the last notes are written")

    def test_a_recorder_that_has_lost_the_program_is_found_again(self):
        nubble = self.start_nubble()
        self.start_recording(nubble)
        nubble.until("notes", tabTitle="Week 12")
        os.kill(nubble.process.pid, signal.SIGKILL)
        nubble.wait()
        nubble = self.start_nubble()
        nubble.until("notes", phase="idle", others=[self.recorder()])
        refused = nubble.run("notes", "start")
        self.assertEqual((refused.returncode, refused.stderr), (1, "nubble: Already running — stop it first.\n"))
        self.assertEqual(nubble.run("notes", "stop").returncode, 0)
        eventually((self.folder / "notes").exists, "the last notes are written")
        nubble.until("notes", others=[])
        self.assertFalse(pathlib.Path(f"/proc/{self.recorder()}/cwd").exists())
