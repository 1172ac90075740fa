import unittest

from lorvane_desktop import accessibility, keys
from lorvane_desktop.lorvane import APPLICATION_ID, FINISH, LISTENING, Lorvane, overlay_is_shown
from lorvane_desktop.session import Session, run
from lorvane_desktop.waiting import until

MICROPHONE = ("devices", "microphone")
SPEECH = ("lorvane", "speech-recognition")
MICROPHONE_PAGE = "Give your voice a way in."
SPEECH_PAGE = "Let Apple turn speech into text."
ALLOWED = "Access is enabled"
QUESTION = "“Lorvane” would like to access {}."


class Grants(unittest.TestCase):
    """Without the user's consent nothing records, and the setup guide asks for it."""

    def setUp(self):
        self.session = self.enterContext(Session(self.id()))

    def start(self, **answers):
        self.lorvane = Lorvane(self.session, answers=answers)
        self.addCleanup(self.session.screenshot, "end")

    def set(self, grant, answer):
        self.session.grant(*grant, APPLICATION_ID, answer)

    def hold_in_vain(self, page):
        """A hold that leads to a page of the guide instead of a recording."""
        with keys.held_shortcut():
            self.wait_for(page)
            self.assertFalse(overlay_is_shown())
        self.assertEqual(self.lorvane.message(), "")
        self.assertEqual(self.lorvane.recordings(), [])
        self.assertEqual(self.lorvane.history(), [])

    def wait_for(self, text):
        return until(lambda: self.find(text), 10, f"“{text}”")

    def find(self, *what):
        """Something in any of Lorvane's windows."""
        root = accessibility.application(self.session, self.lorvane.process)
        return root.find(*what, states=[accessibility.SHOWING])

    def prompt(self, what):
        """The question for a grant."""
        return until(lambda: self.find(QUESTION.format(what), "dialog"), 10, "the prompt")

    def test_nothing_records_without_a_grant_and_changes_from_outside_count_at_once(self):
        self.start(microphone="no", speech="no")
        self.hold_in_vain(MICROPHONE_PAGE)
        self.wait_for("Allow microphone").press()  # a refusal stays one: no prompt comes
        self.set(MICROPHONE, "yes")
        self.wait_for(ALLOWED)
        self.hold_in_vain(SPEECH_PAGE)
        self.set(SPEECH, "yes")
        self.wait_for(ALLOWED)
        self.wait_for("Set up later").press()
        with keys.held_shortcut():
            self.lorvane.wait_for(LISTENING)
        until(lambda: not overlay_is_shown(), FINISH, "the end of the dictation")
        self.set(MICROPHONE, "no")
        self.hold_in_vain(MICROPHONE_PAGE)

    def test_the_prompts_are_answered_by_keyboard_and_by_accessibility_action(self):
        self.start()
        self.hold_in_vain(MICROPHONE_PAGE)
        self.wait_for("Allow microphone").press()
        allow = self.prompt("the microphone").find("Allow", role=".*button")
        until(lambda: allow.has_state(accessibility.FOCUSED), 10, "the focus on Allow")
        self.session.screenshot("prompt")
        run("xdotool", "key", "Return")
        self.wait_for(ALLOWED)
        self.assertEqual(self.session.granted(*MICROPHONE, APPLICATION_ID), ["yes"])

        self.hold_in_vain(SPEECH_PAGE)
        self.wait_for("Allow Speech Recognition").press()
        prompt = self.prompt("speech recognition")
        until(lambda: prompt.find("Don’t Allow", role=".*button"), 5, "Don’t Allow").press()
        until(lambda: self.session.granted(*SPEECH, APPLICATION_ID) == ["no"], 5, "the answer")
        self.hold_in_vain(SPEECH_PAGE)
