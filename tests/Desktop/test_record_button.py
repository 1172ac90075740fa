import time

from lorvane_desktop import editors, microphone, voices, wer
from lorvane_desktop.lorvane import CANCELLED, COPIED, FINISH, LISTENING
from lorvane_desktop.testcase import PAUSE, DesktopTest


class RecordButton(DesktopTest):
    """The button, pressed as a screen reader presses it."""

    def test_words_are_copied_and_not_pasted(self):
        editor = editors.mousepad(self.session)
        voice = voices.prompts(self.session, "agent-user")
        self.lorvane.press("Start dictation")
        self.lorvane.wait_for(LISTENING)
        microphone.say(self.session, voice).wait()
        time.sleep(PAUSE)
        self.lorvane.press("Finish dictation")
        self.lorvane.wait_for(COPIED, seconds=FINISH)
        text = self.only_record()
        self.assertLessEqual(wer.errors(wer.words(voice.text), wer.words(text)), 1, text)
        self.assertEqual(editors.clipboard(), text)
        self.assertEqual(editor.text(), "")
        self.assertEqual(self.lorvane.recordings(), [])

    def test_a_cancelled_recording_leaves_nothing(self):
        voice = voices.prompts(self.session, "agent-user")
        self.lorvane.press("Start dictation")
        self.lorvane.wait_for(LISTENING)
        speech = microphone.say(self.session, voice)
        self.assertEqual(len(self.lorvane.recordings()), 1)
        speech.wait()
        self.lorvane.press("Cancel")
        self.lorvane.wait_for(CANCELLED)
        self.assertEqual(self.lorvane.history(), [])
        self.assertEqual(self.lorvane.recordings(), [])
        self.assertEqual(editors.clipboard(), "")
