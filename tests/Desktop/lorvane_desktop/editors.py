"""Editors that nobody here wrote, opened with the cursor in an empty text."""

import shlex
import subprocess

from gi.repository import GLib

from . import accessibility
from .session import run
from .waiting import until

PAGE = """<!doctype html><title>Notes</title>
<textarea autofocus rows=12 cols=60 aria-label="Notes"></textarea>
<textarea rows=2 cols=60 aria-label="Other"></textarea>
"""


class Editor:
    """A running editor, in front. `field` is the element that holds the text, `pid` the process
    that shows it."""

    def __init__(self, session, name, command, role):
        self.name = name
        self._session = session
        self.process = session.spawn(name, *command)
        self.field = until(lambda: self._focused(role), 60, f"{name} with the cursor in its text")
        # The window manager tells of the window in front later than the editor of its focus.
        self.window = until(self._window_in_front, 10, f"{name} in front")

    def _root(self):
        root = accessibility.application(self._session, self.process)
        if root:
            self.pid = root.pid
        return root

    def _window_in_front(self):
        """The number of its window, if that is in front."""
        window = run("xdotool", "getactivewindow").strip()
        is_own = window and run("xdotool", "getwindowpid", window).strip() == str(self.pid)
        return window if is_own else None

    def _focused(self, role, besides=None):
        root = self._root()
        found = root and root.find(role=role, states=[accessibility.FOCUSED])
        return found if found != besides else None

    def other_field(self):
        """Another field of the same window, from then on to be seen: the one to search in, or the
        second of the page."""
        if self.name == "chromium":
            return self._root().find("Other", role="entry")
        run("xdotool", "key", "ctrl+f", check=True)
        return until(lambda: self._focused("text|entry", besides=self.field), 10,
                     f"the search field of {self.name}")

    def focus(self, element=None):
        """Brings the editor forward, with the cursor in its text or in another field."""
        element = element or self.field
        # Else the window could be in front still, before another one gets there.
        self._session.settle()
        run("xdotool", "windowactivate", "--sync", self.window, check=True)

        def has_focus():
            # Asked for every time: LibreOffice's text says that it has the focus while its window
            # comes forward, and then the field gets it that had it last.
            element.grab_focus()
            return element.has_state(accessibility.FOCUSED)

        until(has_focus, 10, f"the focus in {self.name}")

    def text(self):
        """The text as another program reads it over the accessibility bus."""
        try:
            return self.field.text().strip("\n\ufffc")
        except GLib.Error:
            return ""

    def close(self):
        self._session.end(self.process)


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


def writer(session):
    return Editor(session, "writer",
                  ["env", "SAL_USE_VCLPLUGIN=gtk3", "soffice",
                   "--writer", "--norestore", "--nologo", "--nofirststartwizard",
                   f"-env:UserInstallation=file://{session.home}/writer"], "paragraph")


def clipboard():
    return run("xclip", "-selection", "clipboard", "-out", seconds=5)


def set_clipboard(text):
    subprocess.run(["xclip", "-selection", "clipboard", "-in"], input=text, text=True, check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
