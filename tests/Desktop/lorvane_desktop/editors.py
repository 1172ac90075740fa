"""Editors that nobody here wrote, opened with the cursor in an empty text."""

import shlex
import subprocess

from gi.repository import GLib

from . import accessibility
from .session import run
from .waiting import until

PAGE = """<!doctype html><title>Notes</title>
<textarea autofocus rows=20 cols=80 aria-label="Notes"></textarea>
"""


class Editor:
    """A running editor. `field` is the element that holds the text."""

    def __init__(self, session, name, command, role):
        self.name = name
        self._session = session
        self._process = session.spawn(name, *command)
        self.field = until(lambda: self._focused(role), 40, f"{name} with the cursor in its text")

    def _focused(self, role):
        root = accessibility.application(self._session, self._process)
        return root and root.find(role=role, states=[accessibility.FOCUSED])

    def text(self):
        """The text as another program reads it over the accessibility bus."""
        try:
            return self.field.text().strip("\n\ufffc")
        except GLib.Error:
            return ""

    def close(self):
        self._session.end(self._process)


def mousepad(session):
    return Editor(session, "mousepad", ["mousepad", "--disable-server"], "text")


def featherpad(session):
    return Editor(session, "featherpad", ["featherpad", "--standalone"], "text")


def chromium(session):
    page = session.home / "notes.html"
    page.write_text(PAGE)
    flags = ("--no-sandbox --no-first-run --disable-gpu --disable-dev-shm-usage "
             "--disable-background-networking --password-store=basic "
             "--force-renderer-accessibility")
    return Editor(session, "chromium",
                  ["chromium", *shlex.split(flags), f"--user-data-dir={session.home}/chromium",
                   f"--app=file://{page}"], "entry|text")


def clipboard():
    return run("xclip", "-selection", "clipboard", "-out", seconds=5)


def set_clipboard(text):
    subprocess.run(["xclip", "-selection", "clipboard", "-in"], input=text, text=True, check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
