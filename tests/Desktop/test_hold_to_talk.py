import stat

from lorvane_desktop import editors, voices, wer
from lorvane_desktop.lorvane import FINISH, PASTED, TRANSCRIBING
from lorvane_desktop.testcase import DesktopTest

PROMPT = "agent-user"


class HoldToTalk(DesktopTest):
    """Hold, speak, let go: the words stand at the cursor of a program that nobody here wrote."""

    def test_words_arrive_in_mousepad(self):
        self.dictate_into(editors.mousepad)

    def test_words_arrive_in_featherpad(self):
        self.dictate_into(editors.featherpad)

    def test_words_arrive_in_a_text_area_of_chromium(self):
        self.dictate_into(editors.chromium)

    def dictate_into(self, open_editor):
        editor = open_editor(self.session)
        voice = voices.prompts(self.session, PROMPT)
        self.hold_and_say(voice, while_speaking=self.check_the_recording)
        self.lorvane.wait_for(TRANSCRIBING)
        self.lorvane.wait_for(PASTED, seconds=FINISH)
        text = self.only_record()
        self.assert_arrives(editor, text)
        self.assertEqual(editors.clipboard(), text)
        self.assertLessEqual(wer.errors(wer.words(voice.text), wer.words(text)), 1, text)
        self.assertEqual(self.lorvane.recordings(), [])

    def check_the_recording(self):
        """While it runs, the recording is in a folder that only its owner can look into."""
        recording, = self.lorvane.recordings()
        file = recording / "recording.caf"
        self.assertEqual(stat.S_IMODE(recording.stat().st_mode), 0o700)
        self.assertEqual(stat.S_IMODE(file.stat().st_mode), 0o600)
        self.assertGreater(file.stat().st_size, 0)
