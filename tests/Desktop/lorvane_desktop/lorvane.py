"""Lorvane, running in the session, as its user and a screen reader see it."""

import contextlib
import json
import os
import re
from pathlib import Path

from gi.repository import GLib

from . import accessibility
from .accessibility import SENSITIVE, SHOWING
from .session import BINARY, run
from .waiting import until

APPLICATION_ID = "net.lorvane.Lorvane"

LISTENING = "Listening · "
TRANSCRIBING = "Transcribing the complete recording…"
PASTED = "Saved and paste requested at your cursor."
GIVEN_UP = ("Saved and copied. Paste with ⌘V; automatic paste needs Accessibility access and the "
            "original text field.")
COPIED = "Saved to history and copied to the clipboard."
NO_SPEECH = "No speech detected. Try again when you’re ready."
CANCELLED = "Dictation cancelled."
RELEASED_EARLY = ("Released before the microphone was ready. After granting permissions, hold "
                  "⌃⌥Space again.")


# The most seconds for the first text of a dictation and for its end. The first one loads the model,
# too: some seconds of computing, for which a busy machine has a small part of a core.
FINISH = 60


class Lorvane:
    """Starts the program and waits until its window is usable. `answers` are the user's to the
    questions for the microphone and for speech; at first both grants are given. `before` is a command
    that runs the program."""

    def __init__(self, session, is_set_up=True, binary=BINARY,
                 answers={"microphone": "yes", "speech": "yes"}, before=()):
        if "microphone" in answers:
            session.grant("devices", "microphone", APPLICATION_ID, answers["microphone"])
        if "speech" in answers:
            session.grant("lorvane", "speech-recognition", APPLICATION_ID, answers["speech"])
        self._session = session
        # As somebody who has been through the setup guide.
        settings = Path(os.environ["XDG_CONFIG_HOME"]) / "lorvane/lorvane.conf"
        settings.parent.mkdir(exist_ok=True)
        if is_set_up:
            settings.write_text("[General]\nLorvane.didCompleteSetup=true\n")
        self.folder = Path(os.environ["XDG_DATA_HOME"]) / "Lorvane"
        self.process = session.spawn("lorvane", *before, binary)
        self._texts = {}
        self.window = until(self._find_window, 30,
                            "Lorvane's window")
        until(lambda: self.window.find("Start dictation"), 10, "the record button")

    def _find_window(self):
        if self.process.poll() is not None:
            raise RuntimeError(f"Lorvane ended with {self.process.returncode}; "
                               f"{self._session.output}/lorvane.log tells why")
        self.application = accessibility.application(self._session, self.process)
        return self.application and self.application.find("Lorvane", role="frame|window")

    def press(self, button):
        """Presses a button of any window by its accessibility action."""
        until(lambda: self.application.find(button, states=(SHOWING, SENSITIVE)), 5,
              f"the button “{button}”").press()

    def message(self):
        """The text of the banner above the page; empty without one."""
        return self._text_before("Dismiss message")

    def transcript(self):
        """The words in the transcript area of the Home page; empty without any."""
        return self._text_before("Copy text")

    def _text_before(self, button):
        """The text that stands before the first button of that name."""
        try:
            return self._texts[button].name()
        except (KeyError, GLib.Error):
            pass
        for parent in self.window.walk():
            try:
                children = parent.children()
                for text, other in zip(children, children[1:]):
                    if other.name() == button:
                        self._texts[button] = text
                        return text.name()
            except GLib.Error:
                continue
        return ""

    def wait_for(self, message, seconds=10):
        """Waits until the banner's text begins so, and gives the whole of it."""
        seen = []

        def shown():
            text = self.message()
            if not seen or seen[-1] != text:
                seen.append(text)
            return text.startswith(message) and text

        try:
            return until(shown, seconds, f"“{message}”")
        except TimeoutError as error:
            raise TimeoutError(f"{error}; shown instead: {seen}") from None

    def history(self):
        """The records of the library file, newest first."""
        file = self.folder / "library.json"
        return json.loads(file.read_text())["history"] if file.exists() else []

    def recordings(self):
        """The folders of recordings that are under way or kept."""
        recovery = self.folder / "Recovery"
        return sorted(recovery.iterdir()) if recovery.exists() else []

    def removed_files(self):
        """The files of its folder that are removed but that it still has open."""
        links = []
        for descriptor in Path(f"/proc/{self.process.pid}/fd").iterdir():
            with contextlib.suppress(FileNotFoundError):  # closed by now
                links.append(os.readlink(descriptor))
        return [link for link in links
                if link.startswith(f"{self.folder}/") and link.endswith(" (deleted)")]

    def megabytes(self, kind="VmRSS"):
        """Resident memory: now, or the most so far ("VmHWM")."""
        status = Path(f"/proc/{self.process.pid}/status").read_text()
        return int(status.split(f"{kind}:")[1].split()[0]) / 1024


def overlay_is_shown():
    """Whether the floating card is on the screen."""
    return overlay_place() is not None


def overlay_place():
    """Where the floating card is on the screen: left, top, width and height; None if it isn't."""
    tree = run("xwininfo", "-root", "-tree")
    windows = [line.split()[0] for line in tree.splitlines()
               if '"Lorvane Recording Indicator"' in line]
    for window in windows:
        about = run("xwininfo", "-id", window)
        if "Map State: IsViewable" in about:
            return tuple(int(re.search(f"{what}: +(-?[0-9]+)", about)[1]) for what in
                         ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
    return None


def window_with_keys():
    """The window that gets the keys, and the one that the window manager calls active."""
    return (run("xdotool", "getwindowfocus").strip(),
            run("xprop", "-root", "_NET_ACTIVE_WINDOW").strip())
