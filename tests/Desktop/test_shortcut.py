import unittest

from lorvane_desktop.lorvane import CANCELLED, LISTENING, Lorvane
from lorvane_desktop.probe import Probe
from lorvane_desktop.session import Session

TAKEN = ("Could not register Control–Option–Space (error 10). Another application may be using "
         "it.")


class Shortcut(unittest.TestCase):
    def test_a_shortcut_that_another_program_holds_is_told_and_the_button_still_works(self):
        session = self.enterContext(Session(self.id()))
        Probe(session)
        lorvane = Lorvane(session)
        self.addCleanup(session.screenshot, "end")
        lorvane.wait_for(TAKEN)
        lorvane.press("Start dictation")
        lorvane.wait_for(LISTENING)
        lorvane.press("Cancel")
        lorvane.wait_for(CANCELLED)
