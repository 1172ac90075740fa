"""Lorvane, killed at random moments of a dictation and of editing: what it leaves is looked at
after each kill, and the next start goes on with it."""

import json
import os
import random
import signal
import subprocess
import threading
import time

from . import accessibility, editors, keys, microphone, voices
from .lorvane import Lorvane
from .session import run
from .waiting import until

EDITING = 3.0  # seconds after the first key in which a kill may come


class Kills:
    """One desktop with an editor, and a Lorvane for each kill."""

    def __init__(self, session, seed):
        self._session = session
        self._random = random.Random(seed)
        self._editor = editors.mousepad(session)
        self._editor_window = run("xdotool", "getactivewindow").strip()
        self._voice = voices.prompts(session, "agent-user")
        self._copied = []
        self._typed = ""
        self._lorvane = None
        self._kept = set()
        self._killed = None  # the moment
        self._finish = None  # seconds from the release to the pasted text
        self.counts = {}
        self.failures = []

    def _count(self, what):
        self.counts[what] = self.counts.get(what, 0) + 1

    def _check(self, holds, what):
        if not holds:
            self.failures.append(what)

    def kill(self, number, kind=None):
        """Starts Lorvane on what the last kill left, and kills it at some moment of an "editing", of
        a "speaking" or of a "finishing"; of any of them if no kind is given."""
        kind = kind or self._random.choices(("editing", "speaking", "finishing"), (3, 2.5, 4.5))[0]
        if kind == "finishing" and self._finish is None:
            self._measure_a_finish()
        self._lorvane = Lorvane(self._session)
        self._check("Could not load" not in self._lorvane.message(),
                    f"kill {number}: {self._lorvane.message()}")
        before = [record["id"] for record in self._lorvane.history()]
        if kind == "editing":
            self._kill_editing(number)
        elif kind == "speaking":
            moment = self._random.uniform(0, self._voice.seconds + 1)
            self._kill_a_dictation(number, before, after_press=moment)
        else:
            moment = self._random.uniform(0, 1.4 * self._finish)
            self._kill_a_dictation(number, before, after_release=moment)

    def _measure_a_finish(self):
        """Dictates once without a kill, since machines differ."""
        self._lorvane = Lorvane(self._session)
        before = self._editor.text()
        run("xdotool", "windowactivate", "--sync", self._editor_window)
        with keys.held_shortcut():
            until(lambda: list(self._new_recordings()), 10, "the recording")
            microphone.say(self._session, self._voice).wait()
        released = time.monotonic()
        until(lambda: self._editor.text() != before, 60, "the text")
        self._finish = time.monotonic() - released
        self._session.end(self._lorvane.process)

    def _kill_after(self, seconds):
        """Sets the moment of the kill; gives what waits for it."""
        process = self._lorvane.process

        def kill():
            os.killpg(process.pid, signal.SIGKILL)
            self._killed = time.monotonic()
        timer = threading.Timer(seconds, kill)
        timer.start()

        def wait():
            timer.join()
            process.wait(10)
        return wait

    def _library(self, number):
        file = self._lorvane.folder / "library.json"
        if not file.exists():
            return {"history": [], "scratchpad": ""}
        try:
            library = json.loads(file.read_text())
        except ValueError as error:
            self._check(False, f"kill {number}: the library can't be read: {error}")
            return {"history": [], "scratchpad": ""}
        self._check(set(library) == {"schemaVersion", "history", "vocabulary", "snippets",
                                     "scratchpad", "settings"}, f"kill {number}: {list(library)}")
        return library

    # A dictation

    def _kill_a_dictation(self, number, before, after_press=None, after_release=None):
        run("xdotool", "windowactivate", "--sync", self._editor_window)
        text = self._editor.text()
        editors.set_clipboard("")
        self._copied = []
        live = wait = None
        alive = threading.Event()
        watcher = threading.Thread(target=self._watch_clipboard, args=(alive,))
        watcher.start()
        with keys.held_shortcut():
            if after_press is not None:
                wait = self._kill_after(after_press)
            while self._lorvane.process.poll() is None and not live:
                if any(file.stat().st_size for file in self._new_recordings()):
                    live = time.monotonic()
            if live:
                playing = microphone.say(self._session, self._voice)
                while playing.speaking() and self._lorvane.process.poll() is None:
                    time.sleep(0.01)
                ended = time.monotonic()
                self._session.end(self._session.process("speech"))
        if not wait:
            wait = self._kill_after(after_release)
        wait()
        if live:
            spoken = min(ended, self._killed) - playing.started
        alive.set()
        watcher.join()
        time.sleep(0.2)

        library = self._library(number)
        texts = [record["text"] for record in library["history"]]
        records = [record for record in library["history"] if record["id"] not in before]
        pasted = self._editor.text()[len(text):]
        self._check(len(records) <= 1, f"kill {number}: {len(records)} records of one dictation")
        self._check(not pasted or pasted in texts, f"kill {number}: “{pasted}” was pasted, not kept")
        for copied in self._copied:
            self._check(copied in texts, f"kill {number}: “{copied}” was copied, not kept")
        recordings = list(self._new_recordings())
        seconds = [self._seconds(file) for file in recordings]
        self._kept.update(file.parent for file in recordings)
        if live is None:
            self._count("killed before the recording")
        elif records:
            self._count("killed with the record saved" + (", and pasted" if pasted else ""))
        else:
            self._count("killed with the recording kept")
            self._check(len(recordings) == 1 and seconds[0] >= spoken - 0.5,
                        f"kill {number}: recordings of {seconds} s after {spoken:.2f} s of speech, "
                        "and no record")

    def _watch_clipboard(self, ended):
        """What Lorvane puts on the clipboard comes after the record."""
        while not ended.is_set():
            try:
                text = editors.clipboard()
            except subprocess.TimeoutExpired:
                continue
            if text and text not in self._copied:
                self._copied.append(text)
            time.sleep(0.05)

    def _new_recordings(self):
        """The files of recordings that no earlier kill has left."""
        for folder in self._lorvane.recordings():
            file = folder / "recording.caf"
            if folder not in self._kept and file.exists():
                yield file

    def _seconds(self, file):
        """The length of a recording as another program reads it."""
        samples = subprocess.run(
            ["ffmpeg", "-nostdin", "-loglevel", "error", "-i", str(file), "-ac", "1", "-ar",
             "8000", "-f", "u8", "-"], capture_output=True).stdout
        return len(samples) / 8000

    # Editing

    def _kill_editing(self, number):
        self._lorvane.press("Scratchpad")
        pad = until(lambda: self._lorvane.window.find(role="text|entry|editbar"), 5,
                    "the scratchpad")
        before = self._library(number)["scratchpad"]
        run("xdotool", "windowactivate", "--sync",
            run("xdotool", "search", "--onlyvisible", "--name", "^Lorvane$").split()[0])
        pad.focus()
        until(lambda: pad.has_state(accessibility.FOCUSED), 5, "the cursor in the scratchpad")
        typed = saved = ""
        wait = self._kill_after(self._random.uniform(0, EDITING))
        while self._lorvane.process.poll() is None:
            word = "".join(self._random.choices("abcdefghij", k=5))
            run("xdotool", "key", "--delay", "5", *word, seconds=5)
            typed += word
            pause = self._random.choice((0.01, 0.05, 1))
            time.sleep(pause)
            if pause == 1 and self._lorvane.process.poll() is None:
                saved = typed
        wait()
        self._count("killed while editing")
        after = self._library(number)["scratchpad"]
        possible = [typed[:n] for n in range(len(saved), len(typed) + 1)]
        self._check(after in [before + part for part in possible]
                    or after in [part + before for part in possible],
                    f"kill {number}: the scratchpad has “{after}” after “{before}”, “{saved}” that "
                    f"was quiet for a second, and “{typed[len(saved):]}”")
