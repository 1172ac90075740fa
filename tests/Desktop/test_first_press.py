import os

from lorvane_desktop import editors, keys, microphone, voices, wer
from lorvane_desktop.lorvane import LISTENING, PASTED, Lorvane
from lorvane_desktop.session import BINARY
from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.waiting import until

HEADER = 4096  # bytes of a recording before its first frame


class FirstPress(DesktopTest):
    """A press before the models are loaded."""

    def start(self):
        self.gate = self.session.home / "models-may-load"
        gate = {"LD_PRELOAD": str(BINARY.parent / "libmodel-gate.so"),
                "LORVANE_MODEL_GATE": str(self.gate)}
        os.environ.update(gate)
        lorvane = Lorvane(self.session)
        for name in gate:
            del os.environ[name]
        return lorvane

    def test_it_records_at_once_and_the_text_follows(self):
        editor = editors.mousepad(self.session)
        voice = voices.prompts(self.session, "queue-periodic-announce", "dir-nomatch", pause=0.4)
        with keys.held_shortcut():
            self.lorvane.wait_for(LISTENING)
            speech = microphone.say(self.session, voice)
            recording, = self.lorvane.recordings()
            # Three seconds of speech that no model is there for.
            until(lambda: (recording / "recording.caf").stat().st_size > HEADER + 3 * 48000 * 4,
                  10, "the audio on the disk")
            self.assertEqual(self.lorvane.transcript(), "")
            self.gate.touch()
            until(self.lorvane.transcript, 60, "the live text")
            speech.wait()
        self.lorvane.wait_for(PASTED, seconds=30)
        text = self.only_record()
        self.assert_arrives(editor, text)
        self.assertLessEqual(wer.errors(wer.words(voice.text), wer.words(text)), 2, text)
