"""The virtual microphone: what is played here is what it hears."""

import time

from .session import run
from .waiting import until


class Playback:
    """A voice that is speaking. `started` is the moment of its first sample, to some 50 ms."""

    def __init__(self, process, seconds):
        self._process = process
        self._seconds = seconds
        until(lambda: run("pactl", "list", "short", "sink-inputs") or not self.speaking(), 10,
              "the voice in the sound server")
        self.started = time.monotonic()

    def speaking(self):
        return self._process.poll() is None

    def wait(self):
        """Returns when the last sample has been heard."""
        if self._process.wait(self._seconds + 10) != 0:
            raise RuntimeError("the voice could not be played; speech.log tells why")


def say(session, voice):
    """Starts to play a voice (see voices.py) and returns at its first sample."""
    # A second ahead: a player that has to wait for a busy processor must not make the voice stutter.
    process = session.spawn("speech", "paplay", "--device=speech", "--latency-msec=1000", voice.path)
    return Playback(process, voice.seconds)
