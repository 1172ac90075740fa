"""The keyboard, by XTEST: to every program these are the keys of a person."""

import contextlib
import time

from .session import run

SHORTCUT = ("Control_L", "Alt_L", "space")


@contextlib.contextmanager
def held_shortcut():
    """Holds the shortcut. Gives a list that gets the moment of the press, then of the release."""
    moments = [time.monotonic()]
    run("xdotool", "keydown", "--delay", "0", *SHORTCUT, check=True)
    try:
        yield moments
    finally:
        moments.append(time.monotonic())
        run("xdotool", "keyup", "--delay", "0", *reversed(SHORTCUT), check=True)


def tap_shortcut():
    """Presses and releases the shortcut faster than a microphone can get ready."""
    run("xdotool", "keydown", "--delay", "0", *SHORTCUT,
        "keyup", "--delay", "0", *reversed(SHORTCUT), check=True)
