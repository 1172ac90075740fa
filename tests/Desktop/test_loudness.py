from lorvane_desktop import editors, voices, wer
from lorvane_desktop.lorvane import FINISH, PASTED
from lorvane_desktop.testcase import DesktopTest


class Loudness(DesktopTest):
    def test_a_quiet_voice_is_understood(self):
        self.dictate(gain=-26)

    def test_a_loud_voice_is_understood(self):
        self.dictate(gain=9)

    def dictate(self, gain):
        editor = editors.mousepad(self.session)
        voice = voices.prompts(self.session, "agent-alreadyon", gain=gain)
        self.hold_and_say(voice)
        self.lorvane.wait_for(PASTED, seconds=FINISH)
        text = self.only_record()
        self.assert_arrives(editor, text)
        self.assertLessEqual(wer.errors(wer.words(voice.text), wer.words(text)), 2, text)
