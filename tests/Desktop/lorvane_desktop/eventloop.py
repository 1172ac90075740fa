"""How long the main thread keeps others waiting, as the watch in the program tells it."""

import dataclasses
import re
import signal

from . import keys, microphone
from .lorvane import LISTENING, PASTED, Lorvane, overlay_is_shown
from .session import BINARY
from .waiting import until

SUM = re.compile(r"Event loop: asked (\d+) times, median ([\d.]+) ms, 99 of 100 ([\d.]+), "
                 r"worst ([\d.]+), most computing ([\d.]+)")
STALL = re.compile(r"Event loop: ([\d.]+) ms, computing ([\d.]+), waiting for others ([\d.]+)")


@dataclasses.dataclass
class Figures:
    """Of one dictation, in milliseconds. `log` tells where the main thread was when it was long."""
    asked: int
    median: float
    high: float  # 99 of 100 were shorter
    worst: float
    computing: float  # the most in one go
    others: float  # the longest wait for other processes, 0 if it was short
    log: str


class Watched:
    """The program with a watch on its event loop."""

    def __init__(self, session):
        self.lorvane = Lorvane(session, binary=BINARY.parent / "lorvane-watched")
        self._log = session.output / "lorvane.log"

    def _sum(self):
        """What was since the last sum, and what was said of it."""
        before = self._text()
        count = len(SUM.findall(before))
        self.lorvane.process.send_signal(signal.SIGUSR1)
        text = until(lambda: len(SUM.findall(self._text())) > count and self._text(), 10,
                     "the watch's figures")
        return SUM.findall(text)[count], text

    def _text(self):
        return self._log.read_text(errors="replace")

    def dictate(self, session, voice):
        """Dictates by the shortcut; gives the figures from the press to the end of the card."""
        _, before = self._sum()
        with keys.held_shortcut():
            until(overlay_is_shown, 10, "the overlay")
            self.lorvane.wait_for(LISTENING)
            microphone.say(session, voice).wait()
            words = len(self.lorvane.transcript().split())
        self.lorvane.wait_for(PASTED, seconds=30)
        until(lambda: not overlay_is_shown(), 10, "the end of the overlay")
        if words <= 3:
            raise AssertionError("no live text")
        (asked, *figures), text = self._sum()
        log = text[len(before):]
        others = max((float(stall[2]) for stall in STALL.findall(log)), default=0)
        return Figures(int(asked), *map(float, figures), others, log)
