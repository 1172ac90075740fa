"""Voices to speak with: prompts that a person recorded in a studio, with their scripts, a
synthetic speaker for what nobody recorded, and a noise in which nobody speaks."""

import gzip
import re
import wave
from pathlib import Path

from .session import run

_SOUNDS = Path("/usr/share/asterisk/sounds/en_US_f_Allison")
_SCRIPTS = Path("/usr/share/doc/asterisk-core-sounds-en/core-sounds-en.txt.gz")

# What the scripts misspell.
_SLIPS = {"represenatives": "representatives", "Un-indentified": "Unidentified",
          "witheld": "withheld", "mail box": "mailbox"}

_BYTES_A_SECOND = 8000


class Voice:
    """A recording of 48 kHz at `path`, and the words that are spoken in it."""

    def __init__(self, path, text):
        self.path, self.text = path, text
        with wave.open(str(path)) as file:
            self.seconds = file.getnframes() / file.getframerate()


def scripts():
    """The scripts of the recorded prompts, by name. Sounds without words are left out."""
    with gzip.open(_SCRIPTS, "rt", encoding="utf-8", errors="replace") as file:
        pairs = (line.split(":", 1) for line in file if ":" in line and not line.startswith(";"))
        return {name.strip(): _corrected(text.strip()) for name, text in pairs if "[" not in text}


def _corrected(text):
    for slip, right in _SLIPS.items():
        text = text.replace(slip, right)
    return text


def _recording(name):
    return _SOUNDS / f"{name}.g722"


def sentences():
    """The names of recorded prompts of six words and more, short enough for one breath, in whose
    scripts every word is written as it is spoken."""
    return [name for name, text in scripts().items()
            if len(text.split()) >= 6 and not re.search(r"\(|\d|\.\.\.", text)
            and _recording(name).exists() and _recording(name).stat().st_size < 5 * _BYTES_A_SECOND]


def prompts(session, *names, pause=0.6, gain=0):
    """Recorded prompts one after another with a pause in seconds, `gain` decibels louder."""
    texts = scripts()
    inputs = [part for name in names for part in ("-f", "g722", "-i", _recording(name))]
    padded = "".join(f"[{i}]apad=pad_dur={pause}[p{i}];" for i in range(len(names)))
    joined = "".join(f"[p{i}]" for i in range(len(names)))
    return _voice(session, " ".join(texts[name] for name in names), *inputs, "-filter_complex",
                  f"{padded}{joined}concat=n={len(names)}:v=0:a=1,volume={gain}dB")


def again(session, voice, times):
    """A voice that says all that it says so many times, one after the other."""
    return _voice(session, " ".join([voice.text] * times), "-stream_loop", times - 1, "-i",
                  voice.path)


def recording(session, path, text):
    """Somebody's recording of `text`, its highest sounds kept, and a pause."""
    return _voice(session, text, "-i", path, "-af",
                  "aresample=48000:resampler=soxr:cutoff=0.99,apad=pad_dur=0.6")


def synthetic(session, text):
    """A synthetic speaker who says any text."""
    raw = session.home / "synthetic.wav"
    run("espeak-ng", "-v", "en-us", "-s", "150", "-w", str(raw), text, check=True)
    return _voice(session, text, "-i", raw)


def noise(session, seconds):
    """Pink noise of a moderate level: a room with nobody speaking."""
    return _voice(session, "", "-f", "lavfi", "-i",
                  f"anoisesrc=color=pink:amplitude=0.05:seed=1:duration={seconds}")


def _voice(session, text, *arguments):
    path = session.home / f"voice-{len(list(session.home.glob('voice-*')))}.wav"
    run("ffmpeg", "-nostdin", "-loglevel", "error", *map(str, arguments), "-ar", "48000", "-ac",
        "1", str(path), check=True)
    return Voice(path, text)
