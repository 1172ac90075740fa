from lorvane_desktop import editors, voices, wer
from lorvane_desktop.lorvane import FINISH, PASTED
from lorvane_desktop.testcase import DesktopTest

LIMIT = 0.10


class WordErrorRate(DesktopTest):
    def test_recorded_prompts_are_understood(self):
        """Each prompt is held, spoken, recognised and pasted like any other dictation."""
        editors.mousepad(self.session)
        prompts = voices.sentences()[::2]
        self.assertGreaterEqual(len(prompts), 40)
        wrong = total = 0
        for number, prompt in enumerate(prompts, 1):
            voice = voices.prompts(self.session, prompt)
            self.hold_and_say(voice)
            self.lorvane.wait_for(PASTED, seconds=FINISH)
            history = self.lorvane.history()
            self.assertEqual(len(history), number)
            spoken, heard = wer.words(voice.text), wer.words(history[0]["text"])
            errors = wer.errors(spoken, heard)
            wrong, total = wrong + errors, total + len(spoken)
            print(f"{errors} of {len(spoken):2} {prompt}: {history[0]['text']}", flush=True)
        print(f"\nFigure: word error rate through the whole chain {100 * wrong / total:.1f}% "
              f"({wrong} of {total} words in {len(prompts)} prompts)", flush=True)
        self.assertLess(wrong / total, LIMIT)
