"""A test with a desktop of its own in which Lorvane runs."""

import time
import unittest

from . import keys, microphone
from .lorvane import LISTENING, Lorvane
from .session import Session
from .waiting import until

# What a person leaves between the last word and letting go.
PAUSE = 0.3


class DesktopTest(unittest.TestCase):
    def setUp(self):
        self.session = self.enterContext(Session(self.id()))
        self.prepare()
        self.lorvane = self.start()
        self.addCleanup(self.session.screenshot, "end")

    def prepare(self):
        """What a test wants on its desktop before Lorvane starts."""

    def start(self):
        return Lorvane(self.session)

    def hold_and_say(self, voice, while_speaking=lambda: None, listening=None):
        """Holds the shortcut, speaks once the microphone is live, and lets go. `listening` tells
        whether it is; else the window does."""
        with keys.held_shortcut():
            if listening:
                until(listening, 10, "the live microphone")
            else:
                self.lorvane.wait_for(LISTENING)
            speech = microphone.say(self.session, voice)
            while_speaking()
            speech.wait()
            time.sleep(PAUSE)

    def assert_arrives(self, editor, text):
        """Waits for exactly that text in an editor."""
        try:
            until(lambda: editor.text() == text, 5, "the text")
        except TimeoutError:
            self.assertEqual(editor.text(), text)

    def only_record(self):
        """The newest record's text, after checking that it is the only one."""
        history = self.lorvane.history()
        self.assertEqual(len(history), 1)
        return history[0]["text"]
