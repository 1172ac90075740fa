import os

from lorvane_desktop import editors, keys, microphone, program, voices
from lorvane_desktop.lorvane import FINISH, LISTENING, TRANSCRIBING, Lorvane
from lorvane_desktop.session import run
from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.waiting import until

PROMPTS = ("queue-periodic-announce", "agent-alreadyon")
HEADER = 4096  # bytes of a recording before its first frame


class Recovery(DesktopTest):
    """A text that can't be trusted is pasted nowhere, and the audio stays."""

    def check_the_audio_is_kept(self, editor):
        until(lambda: not self.lorvane.message(), FINISH, "the end of the dictation")
        recording, = self.lorvane.recordings()
        self.assertEqual([file.name for file in recording.iterdir()], ["recording.caf"])
        self.assertEqual(editor.text(), "")
        return recording / "recording.caf"


class DamagedModel(Recovery):
    def start(self):
        return Lorvane(self.session, binary=program.with_models(self.session, program.damaged))

    def test_a_recogniser_that_fails_leaves_the_whole_recording(self):
        editor = editors.mousepad(self.session)
        voice = voices.prompts(self.session, *PROMPTS)
        self.hold_and_say(voice)
        self.lorvane.wait_for(TRANSCRIBING)
        file = self.check_the_audio_is_kept(editor)
        self.assertEqual(self.lorvane.history(), [])
        self.assertEqual(editors.clipboard(), "")
        seconds = float(run("ffprobe", "-v", "error", "-show_entries", "format=duration", "-of",
                            "csv=p=0", str(file), check=True))
        self.assertGreater(seconds, voice.seconds)


class LostSpeech(Recovery):
    def start(self):
        # Whole files are analysed as they are written, before anything is lost from them.
        return Lorvane(self.session,
                       binary=program.with_models(self.session, program.without_analyser))

    def test_a_text_far_shorter_than_the_live_text_is_not_trusted(self):
        editor = editors.mousepad(self.session)
        voice = voices.prompts(self.session, *PROMPTS)
        with keys.held_shortcut():
            self.lorvane.wait_for(LISTENING)
            microphone.say(self.session, voice).wait()
            until(lambda: len(self.lorvane.transcript().split()) >= 12, FINISH, "live text")
            recording, = self.lorvane.recordings()
            # What was said becomes a hole in the file, which reads as silence.
            os.truncate(recording / "recording.caf", HEADER)
        self.lorvane.wait_for(TRANSCRIBING)
        self.check_the_audio_is_kept(editor)
