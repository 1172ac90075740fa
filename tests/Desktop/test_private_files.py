import contextlib
import os
import shutil
import stat
import unittest
from pathlib import Path

from lorvane_desktop import editors, keys, microphone, voices
from lorvane_desktop.lorvane import LISTENING, PASTED, Lorvane
from lorvane_desktop.session import BINARY, Session


class PrivateFiles(unittest.TestCase):
    """Nothing that holds speech or text can be read by others, whatever Lorvane was started
    with."""

    def setUp(self):
        self.session = self.enterContext(Session(self.id()))
        self.addCleanup(self.session.screenshot, "end")
        self.data = Path(os.environ["XDG_DATA_HOME"]) / "Lorvane"

    def start(self, umask):
        """As somebody does who has no secrets and wants to see every crash."""
        script = self.session.home / "start"
        script.write_text(f"#!/bin/sh\nulimit -c unlimited\numask {umask}\nexec '{BINARY}'\n")
        script.chmod(0o700)
        return Lorvane(self.session, binary=script)

    def check_modes(self, *names):
        """All of the user's data, and that files of these names are there by now."""
        found = [self.data, *sorted(self.data.rglob("*"))]
        for path in found:
            with contextlib.suppress(FileNotFoundError):  # Removed since it was found.
                about = path.lstat()
                expected = 0o700 if stat.S_ISDIR(about.st_mode) else 0o600
                self.assertEqual(oct(stat.S_IMODE(about.st_mode)), oct(expected), path)
        self.assertLessEqual(set(names), {path.name for path in found})

    def check_open_files(self, process):
        """What it writes elsewhere, under whatever name."""
        for descriptor in Path(f"/proc/{process.pid}/fd").iterdir():
            with contextlib.suppress(FileNotFoundError):  # Closed since it was listed.
                self.check_open_file(descriptor)

    def check_open_file(self, descriptor):
        target = os.readlink(descriptor)
        if target.startswith("/") and not target.startswith(("/dev/", "/proc/", "/memfd:")):
            about = descriptor.stat()
            is_written = os.lstat(descriptor).st_mode & stat.S_IWUSR
            is_ours = not target.startswith(str(self.session.output))
            if stat.S_ISREG(about.st_mode) and is_written and is_ours:
                self.assertEqual(about.st_mode & 0o077, 0, target)

    def check_core_limit(self, process):
        limits = Path(f"/proc/{process.pid}/limits").read_text()
        line, = (line for line in limits.splitlines() if line.startswith("Max core file size"))
        self.assertEqual(line.split()[4], "0", line)

    def test_all_modes_are_closed_under_usual_and_impossible_umasks(self):
        editors.mousepad(self.session)
        voice = voices.prompts(self.session, "vm-nobodyavail")
        for umask in ("000", "022", "077", "777"):
            with self.subTest(umask=umask):
                lorvane = self.start(umask)
                self.check_core_limit(lorvane.process)
                with keys.held_shortcut():
                    lorvane.wait_for(LISTENING)
                    speech = microphone.say(self.session, voice)
                    self.check_modes("recording.caf")
                    self.check_open_files(lorvane.process)
                    speech.wait()
                lorvane.wait_for(PASTED, 30)
                self.check_modes("library.json")
                # An interrupted dictation leaves its audio.
                with keys.held_shortcut():
                    lorvane.wait_for(LISTENING)
                    lorvane.process.terminate()
                    lorvane.process.wait(60)
                self.check_modes("library.json", "recording.caf")
                shutil.rmtree(self.data)
