import unittest

from lorvane_desktop.kills import Kills
from lorvane_desktop.session import Session


class Killed(unittest.TestCase):
    """A few kills; scripts/kill-often makes as many as one likes."""

    def test_a_kill_loses_neither_the_library_nor_the_recording(self):
        session = self.enterContext(Session(self.id()))
        kills = Kills(session, seed=None)
        for number, kind in enumerate(("speaking", "editing", "speaking", "editing")):
            kills.kill(number, kind)
        self.assertEqual(kills.failures, [])
