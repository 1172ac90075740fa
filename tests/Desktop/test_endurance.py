import random
import unittest

from lorvane_desktop.endurance import Endurance
from lorvane_desktop.session import Session

NAMES = ("source unplugged", "sound server restarted before", "disk full", "disk full before",
         "window manager restarted", "clock set back", "Lorvane stopped", "sound server gone",
         "everything stopped")


class Endures(unittest.TestCase):
    """A few dictations with an interruption each; scripts/endure makes as many as one likes."""

    def test_what_goes_and_comes_back_on_the_desktop_loses_no_text(self):
        seed = random.randrange(100000)
        print(f"seed {seed}", flush=True)
        session = self.enterContext(Session(self.id()))
        endurance = Endurance(session, seed)
        endurance.dictate_all(len(NAMES) + 2, NAMES)
        endurance.end()
        self.assertEqual(endurance.failures, [])
