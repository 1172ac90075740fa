"""Many dictations in a row by one and the same Lorvane, while the desktop falls apart and recovers
at random moments. After each: it lives, no text is lost, and what went wrong was told."""

import os
import random
import shutil
import signal
import time
from collections import Counter
from pathlib import Path

from . import editors, keys, library, microphone, voices, wer
from .daytime import Daytime
from .lorvane import GIVEN_UP, LISTENING, NO_SPEECH, PASTED, Lorvane, overlay_is_shown
from .session import run
from .smalldisk import SmallDisk
from .waiting import until

ENDED = ("Audio capture ended unexpectedly. Release the shortcut to recover the captured "
         "recording.")
NO_INPUT = "No microphone input is available. Check your audio input in System Settings."
DISK_FULL = "No space left on device"
NOT_SAVED = "Could not save the library: "

PAUSE = 0.3  # seconds between the last word and letting go
REST = 7  # seconds after which Lorvane has given back the memory that it was done with
LIMIT = 60  # seconds for whatever is only late when this machine is busy


class Interruption:
    """What happens before the press, at some moment of the speech, or after the release; each is the
    name of a method. `refused` is what is told when no recording can begin, `told` while the key is
    held, `over` at the end, one of several. `pasted`: whether the text has to stand in the target;
    None if either is right. `whole`: whether all the words have to be there. `mend` comes last."""

    def __init__(self, before=None, during=None, after=None, mend=None, refused=None, told=None,
                 over=(PASTED,), pasted=True, whole=True):
        self.before, self.during, self.after, self.mend = before, during, after, mend
        self.refused, self.told, self.over = refused, told, over
        self.pasted, self.whole = pasted, whole


# A text that isn't known to be complete is copied and pasted nowhere; no message is left then.
_cut_off = {"told": ENDED, "over": ("",), "pasted": False, "whole": False}
_either = {"over": (PASTED, GIVEN_UP), "pasted": None}

NONE = "nothing"
INTERRUPTIONS = {
    NONE: Interruption(),
    "source unplugged before": Interruption("unplug", mend="plug_in", refused=NO_INPUT),
    "source unplugged": Interruption(during="unplug", mend="plug_in", **_cut_off),
    "sound server restarted before": Interruption("restart_sound"),
    "sound server gone": Interruption("kill_sound", mend="start_sound", refused=NO_INPUT),
    "sound server killed": Interruption(during="kill_sound", mend="start_sound", **_cut_off),
    "window manager restarted before": Interruption("restart_windows"),
    "window manager restarted": Interruption(during="restart_windows", **_either),
    "disk full before": Interruption("fill_disk_for_good", mend="make_room", refused=DISK_FULL),
    "disk full": Interruption(during="fill_disk", mend="make_room",
                              **_cut_off | {"over": (NOT_SAVED,)}),
    "disk full after": Interruption(after="fill_disk", mend="make_room",
                                    over=(NOT_SAVED, PASTED), pasted=None),
    "clock set back": Interruption(during="set_clock_back"),
    "clock set back after": Interruption(after="set_clock_back"),
    "Lorvane stopped": Interruption(during="stop_lorvane"),
    "Lorvane stopped after": Interruption(after="stop_lorvane", **_either),
    "everything stopped": Interruption(during="stop_everything", whole=False, **_either),
    "everything stopped after": Interruption(after="stop_everything", whole=False, **_either),
}
# Programs that run already never come back to a bus that was started anew, Lorvane's window as
# little as an editor's: nobody can read it from then on. So this comes once, near the end.
BUS_RESTARTED = Interruption("restart_accessibility", **_either)


class Endurance:
    """One desktop and one Lorvane. `failures` lists what was wrong, `counts` what happened, and
    `megabytes` the resident memory after each dictation, and at rest after each fiftieth. `lengths`
    are those of the things that are said, in sentences."""

    RESTED = 50

    def __init__(self, session, seed, makers=(editors.mousepad, editors.featherpad),
                 lengths=(1,)):
        self._session = session
        self._random = random.Random(seed)
        self._disk = SmallDisk(Path(os.environ["XDG_DATA_HOME"]))
        names = [(f"zorblat {n}", f"Zorblat{n}", ()) for n in range(self._random.randrange(100))]
        library.write(Path(os.environ["XDG_DATA_HOME"]) / "Lorvane", (), names, (), "")
        self._daytime = Daytime(session.home)
        self._lorvane = Lorvane(session, before=self._daytime.command)
        self._can_be_read = True
        self._makers = makers
        self._editors = [make(session) for make in makers]
        sentences = voices.sentences()
        self._voices = [voices.prompts(session, *self._random.sample(sentences, count))
                        for count in lengths]
        self._texts = []  # of all dictations, newest first
        self.counts = Counter({"phrases to listen for": len(names)})
        self.failures = []
        self.megabytes = []

    def dictate_all(self, count, names=None, report=print):
        """Dictates that often, with those interruptions in turn if they are given, and the bus
        restarted for the last few."""
        blind = count - max(2, count // 10)
        for number in range(count):
            if number == blind:
                name, interruption = "accessibility bus restarted", BUS_RESTARTED
            else:
                name = names[number % len(names)] if names else self._random_name()
                interruption = INTERRUPTIONS[name]
            before = len(self.failures)
            start = time.monotonic()
            try:
                self._dictate(number + 1, name, interruption)
            except TimeoutError as error:
                self._check(False, f"{number + 1} ({name}): {error}")
            self.counts[name] += 1
            if (number + 1) % self.RESTED == 0:
                time.sleep(REST)
            self.megabytes.append(self._lorvane.megabytes())
            report(f"{number + 1:4} {name}: {time.monotonic() - start:.1f} s, "
                   f"{self.megabytes[-1]:.0f} MB"
                   + "".join(f"\n     FAILED: {what}" for what in self.failures[before:]))

    def _random_name(self):
        return NONE if self._random.random() < 0.5 else self._random.choice(list(INTERRUPTIONS)[1:])

    def _check(self, holds, what):
        if not holds:
            self.failures.append(what)

    # One dictation

    def _dictate(self, number, name, interruption):
        target = self._random.choice(self._editors)
        voice = self._random.choice(self._voices)
        moment = self._random.uniform(0.2, 0.8)
        what = f"{number} ({name})"
        self._do(interruption.before)
        if interruption is BUS_RESTARTED:
            target = self._editors[0]
        target.focus()
        texts = {editor: editor.text() for editor in self._editors}
        editors.set_clipboard("")
        with keys.held_shortcut():
            if interruption.refused:
                self._expect((interruption.refused,), what)
            else:
                self._speak(voice, moment, interruption, what)
        if interruption.after:
            time.sleep(moment / 2)
            self._do(interruption.after)
        until(lambda: not overlay_is_shown(), LIMIT, "the end of the dictation")
        if not interruption.refused:
            self._expect(interruption.over, what)
        self._check_what_is_left(what, interruption, target, voice, texts)
        self._do(interruption.mend)

    def _do(self, method):
        if method:
            getattr(self, "_" + method)()

    def _speak(self, voice, moment, interruption, what):
        until(lambda: any(file.stat().st_size for file in self._recordings()), LIMIT,
              "the recording")
        self._expect((LISTENING,), what)
        speech = microphone.say(self._session, voice)
        if interruption.during:
            time.sleep(moment * voice.seconds)
            self._do(interruption.during)
        if interruption.told:
            self._expect((interruption.told,), what)
            self._session.end(self._session.process("speech"))
        else:
            speech.wait()
        time.sleep(PAUSE)

    def _expect(self, messages, what):
        """Waits until the window shows one of these texts."""
        if not self._can_be_read:
            return
        try:
            until(lambda: any(text in shown if text else not shown for shown in
                              [self._lorvane.message()] for text in messages), LIMIT, messages)
        except TimeoutError:
            self._check(False, f"{what}: told “{self._lorvane.message()}”, not one of {messages}")

    def _recordings(self):
        return [folder / "recording.caf" for folder in self._lorvane.recordings()
                if (folder / "recording.caf").exists()]

    def _check_what_is_left(self, what, interruption, target, voice, texts):
        self._check(self._lorvane.process.poll() is None, f"{what}: Lorvane has ended")
        copied = editors.clipboard()
        kept = [file.stat().st_size for file in self._recordings()]
        if interruption.refused:
            self._check(not any(kept) and not copied, f"{what}: {kept}, “{copied}”")
        else:
            self._check_text(what, interruption, voice, copied, kept)
        if copied and interruption.pasted:
            until(lambda: target.text() != texts[target], LIMIT, "the text in the target")

        added = {editor: editor.text()[len(texts[editor]):] for editor in self._editors}
        if not interruption.refused:
            pasted = added.pop(target)
            self._check(pasted in ((copied,) if interruption.pasted else
                                   ("",) if interruption.pasted is False else (copied, "")),
                        f"{what}: “{pasted}” in {target.name}, “{copied}” on the clipboard")
        for editor, text in added.items():
            self._check(not text, f"{what}: “{text}” in {editor.name}")
        for folder in self._lorvane.recordings():
            shutil.rmtree(folder)

    def _check_text(self, what, interruption, voice, copied, kept):
        heard, spoken = wer.words(copied), wer.words(voice.text)
        if interruption.whole:
            self._check(wer.errors(spoken, heard) <= 1 + len(spoken) // 4,
                        f"{what}: “{copied}” of “{voice.text}”")
        if not copied:
            # Of little speech nothing may be understood: its audio is kept, or it had none.
            self._check(not interruption.whole and (kept or NO_SPEECH in self._lorvane.message()),
                        f"{what}: neither text nor audio")
            return
        if interruption.told:
            self._check(kept, f"{what}: the recording of an incomplete text is gone")
        self._texts.insert(0, copied)
        saved = self._saved()
        if NOT_SAVED in interruption.over:
            # The last ones may be missing, until there is room and something to be saved again.
            self._check(saved == self._texts[len(self._texts) - len(saved):], f"{what}: saved {saved[:2]}")
        else:
            self._check(saved == self._texts, f"{what}: “{copied}” was not saved, but {saved[:2]}")

    def _saved(self):
        return [record["text"] for record in self._lorvane.history()]

    def end(self):
        """Ends Lorvane as a log-out does, and looks at the library that it leaves."""
        self._lorvane.process.terminate()
        status = self._lorvane.process.wait(LIMIT)
        self._check(status == 0, f"Lorvane ended with {status}")
        self._check(self._saved() == self._texts,
                    f"at the end {len(self._saved())} of {len(self._texts)} texts are saved")

    # Interruptions

    def _unplug(self):
        run("pactl", "unload-module", "module-remap-source", check=True)

    def _plug_in(self):
        run("pactl", "load-module", "module-remap-source", "source_name=microphone",
            "master=speech.monitor", check=True)
        run("pactl", "set-default-source", "microphone", check=True)

    def _kill_sound(self):
        self._session.sound_server.send_signal(signal.SIGKILL)
        self._session.sound_server.wait()

    def _start_sound(self):
        self._session.start_sound_server()()

    def _restart_sound(self):
        self._kill_sound()
        self._start_sound()

    def _restart_windows(self):
        self._session.end(self._session.process("openbox"))
        self._session.start_window_manager()()

    def _restart_accessibility(self):
        self._session.end(self._session.process("accessibility"))
        self._session.start_accessibility()()
        self._can_be_read = False
        for editor in self._editors:
            editor.close()
        self._editors = [make(self._session) for make in self._makers]

    def _fill_disk(self):
        self._disk.fill()

    def _fill_disk_for_good(self):
        """Not while something is about to make room again: the library's old file, when a new one
        is saved, and a recording that was removed while it was still being read."""
        file = self._lorvane.folder / "library.json"
        until(lambda: time.time() - file.stat().st_mtime > 1, LIMIT, "a library that is at rest")
        until(lambda: not self._lorvane.removed_files(), LIMIT, "the end of all reading")
        self._fill_disk()

    def _make_room(self):
        self._disk.make_room()

    def _set_clock_back(self):
        """By anything from a second to a day."""
        self._daytime.set_back(86400 ** self._random.random())

    def _stop_lorvane(self):
        self._session.stop_for(self._random.uniform(0.2, 2), [self._lorvane.process])

    def _stop_everything(self):
        self._session.stop_for(self._random.uniform(0.2, 2))
