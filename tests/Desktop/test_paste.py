import random
import unittest

from lorvane_desktop import editors, trials
from lorvane_desktop.session import Session, call

DISTURBANCES = ("was in another window", "was in another field", "was minimised",
                "switches away", "leaves the field and then the window", "hung", "had quit")


class Paste(unittest.TestCase):
    """The shortcut and the paste without speech, in editors that nobody here wrote."""

    def setUp(self):
        self.session = self.enterContext(Session(self.id(), trials.SIZE))

    def desk(self, *makers):
        desk = trials.Desk(self.session, makers)
        self.addCleanup(self.session.screenshot, "end")
        return desk

    def try_all(self, make):
        """Whatever happens, the text gets nowhere else, and there if it can."""
        desk = self.desk(make, editors.featherpad if make == editors.mousepad else editors.mousepad)
        held = trials.Trial(desk, *desk.editors, "undisturbed", modifiers_held=True)
        self.assertEqual(held.run().problems, [], held)
        for name in DISTURBANCES:
            for moment in trials.moments(name):
                trial = trials.Trial(desk, *desk.editors, name, moment)
                self.assertEqual(trial.run().problems, [], f"{trial}: {trial.report}")

    def test_mousepad(self):
        self.try_all(editors.mousepad)

    def test_featherpad(self):
        self.try_all(editors.featherpad)

    def test_chromium(self):
        self.try_all(editors.chromium)

    def test_writer(self):
        self.try_all(editors.writer)

    def test_a_few_at_random(self):
        seed = random.randrange(1 << 32)
        print(f"seed {seed}", flush=True)
        desk = self.desk(editors.mousepad, editors.featherpad, editors.chromium)
        self.assertEqual(list(map(str, trials.trials(desk, random.Random(seed), 8))), [])

    def test_without_the_accessibility_bus_the_text_is_only_copied(self):
        desk = self.desk(editors.mousepad)
        call(self.session.bus, "org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties",
             "Set", trials.NOT_ENABLED)
        trial = trials.Trial(desk, desk.editors[0], None, "undisturbed").run(is_trusted=False)
        self.assertEqual(trial.problems, [])
        self.assertLess(trial.report["took"], 150)
