from lorvane_desktop import editors, voices, wer
from lorvane_desktop.lorvane import PASTED
from lorvane_desktop.testcase import DesktopTest

# Joined without a pause, so that the seams at 30 and 60 seconds cut through somebody speaking.
PROMPTS = ("basic-pbx-ivr-main", "demo-echotest", "conf-adminmenu-menu8", "queue-periodic-announce")


class LongVoice(DesktopTest):
    def test_seventy_seconds_lose_and_double_nothing_at_two_seams(self):
        editor = editors.mousepad(self.session)
        voice = voices.prompts(self.session, *PROMPTS, pause=0)
        self.assertGreater(voice.seconds, 65)
        self.hold_and_say(voice)
        self.lorvane.wait_for(PASTED, seconds=60)
        text = self.only_record()
        self.assert_arrives(editor, text)

        spoken, heard = wer.words(voice.text), wer.words(text)
        lost, invented = wer.runs(spoken, heard)
        print(f"\n{wer.errors(spoken, heard)} errors in {len(spoken)} words;",
              f"lost: {lost}; invented: {invented}")
        # A seam that goes wrong loses or doubles about a second of speech: some three words.
        self.assertLessEqual(max(map(len, lost), default=0), 1, lost)
        self.assertLessEqual(max(map(len, invented), default=0), 1, invented)
        self.assertLess(wer.errors(spoken, heard) / len(spoken), 0.1)
