"""The keyboard, by XTEST: to every program these are the keys of a person."""

import contextlib
import time

from .session import run

SHORTCUT = ("Control_L", "Alt_L", "space")


def press(*keys):
    run("xdotool", "keydown", *keys, check=True)


def release(*keys):
    run("xdotool", "keyup", *keys, check=True)


@contextlib.contextmanager
def held_shortcut():
    """Holds the shortcut. Gives a list that gets the moment of the press, then of the release."""
    moments = []
    press(*SHORTCUT)
    moments.append(time.monotonic())
    try:
        yield moments
    finally:
        release(*reversed(SHORTCUT))
        moments.append(time.monotonic())


def tap_shortcut():
    """Presses and releases the shortcut faster than a microphone can get ready."""
    run("xdotool", "keydown", *SHORTCUT, "keyup", *reversed(SHORTCUT), check=True)
