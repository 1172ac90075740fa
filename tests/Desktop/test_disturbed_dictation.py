from lorvane_desktop import editors, trials, voices
from lorvane_desktop.lorvane import FINISH, GIVEN_UP, PASTED
from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.waiting import until


class DisturbedDictation(DesktopTest):
    """What the user and the editor do while Lorvane listens."""

    def test_the_words_find_their_field_or_stay_on_the_clipboard(self):
        target = editors.mousepad(self.session)
        search = target.other_field()
        other = editors.featherpad(self.session)
        voice = voices.prompts(self.session, "agent-alreadyon")

        def dictate(meanwhile, outcome):
            target.focus()
            self.hold_and_say(voice, while_speaking=meanwhile)
            self.lorvane.wait_for(outcome, seconds=FINISH)
            text = self.lorvane.history()[0]["text"]
            until(lambda: editors.clipboard() == text, 5, "the text on the clipboard")
            return text

        first = dictate(lambda: trials.activate(other), PASTED)
        self.assert_arrives(target, first)
        second = dictate(search.grab_focus, PASTED)
        self.assert_arrives(target, first + second)
        self.assertEqual(search.text(), "")
        dictate(target.close, GIVEN_UP)
        self.assertEqual(other.text(), "")
        self.assertEqual(len(self.lorvane.history()), 3)
