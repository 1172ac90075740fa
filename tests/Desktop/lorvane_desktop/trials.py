"""Pastes while the user and the applications do something else, at any moment: no character may
reach a wrong window or field, and the text is on the clipboard every time."""

import itertools
import os
import signal
import threading
import time
from pathlib import Path

from gi.repository import GLib

from . import accessibility, editors, keys
from .probe import Probe
from .session import run
from .waiting import until

SIZE = "1600x1200"
# The time from the release to the keystroke is 0.18 s, or 0.26 s when the focus had to be restored.
LAST_CHECKS = (0.18, 0.26)
LONGEST = 0.32
# Asking an application that hangs takes 0.2 s, and setting its focus 0.4 s, both without a turn of
# the event loop in between.
MOST_BLOCKED = 0.8

NOT_ENABLED = GLib.Variant("(ssv)", ("org.a11y.Status", "IsEnabled", GLib.Variant("b", False)))


class Desk:
    """Editors side by side, each with a text and another field, and Lorvane's shortcut."""

    def __init__(self, session, makers):
        self.session = session
        self.probe = Probe(session)
        self.places = [(x, y) for y in (0, 600) for x in (0, 800)]
        self.editors = [self._open(make, place) for make, place in zip(makers, self.places)]
        self._numbers = itertools.count(1)

    def _open(self, make, place):
        editor = make(self.session)
        editor.make, editor.place = make, place
        run("wmctrl", "-i", "-r", editor.window, "-b", "remove,maximized_vert,maximized_horz")
        run("wmctrl", "-i", "-r", editor.window, "-e", f"0,{place[0]},{place[1]},780,560")
        editor.other = editor.other_field()
        editor.focus()
        return editor

    def reopen(self, editor):
        editor.close()
        self.editors[self.editors.index(editor)] = self._open(editor.make, editor.place)

    def token(self):
        return f"zebra{next(self._numbers)}."

    def traces(self, token):
        """Where a text is: (editor, element, how often) for each field that holds it."""
        found = []
        for editor in self.editors:
            for element in (editor.field, editor.other):
                try:
                    count = element.text().count(token)
                except GLib.Error:
                    continue
                if count:
                    found.append((editor, element, count))
        return found


def click(element):
    x, y = element.middle()
    # For as long as a person does.
    run("xdotool", "mousemove", str(x), str(y), "mousedown", "1", "sleep", "0.1", "mouseup", "1",
        check=True)


def activate(editor):
    run("xdotool", "windowactivate", editor.window, check=True)


def minimise(editor):
    run("xdotool", "windowminimize", editor.window, check=True)


def kill(editor):
    """Ends an editor. A large one takes its time to go, and has its window until then."""
    os.kill(editor.pid, signal.SIGKILL)
    until(lambda: not has_process(editor), 10, f"the end of {editor.name}")


def has_process(editor):
    try:
        return Path(f"/proc/{editor.pid}/stat").read_text().rsplit(")", 1)[1].split()[0] != "Z"
    except OSError:
        return False


def answers_at_once(editor):
    """An editor that was just opened may be too busy to tell of its focus in time."""
    start = time.monotonic()
    editor.field.has_state(accessibility.FOCUSED)
    return time.monotonic() - start < 0.03


def stop_for_a_while(editor):
    os.kill(editor.pid, signal.SIGSTOP)
    threading.Timer(1.2, os.kill, (editor.pid, signal.SIGCONT)).start()


class Scenario:
    """What happens while the shortcut is held (`meanwhile`) and some moment after its release
    (`then`), each a function of the target and another editor. `lands` tells what becomes of the
    text if that is certain. `quits` if the target is gone then."""

    def __init__(self, meanwhile=None, then=None, lands=None, quits=False):
        self.meanwhile, self.then, self.lands, self.quits = meanwhile, then, lands, quits


SCENARIOS = {
    "undisturbed": Scenario(lands=True),
    "was in another window": Scenario(lambda target, other: activate(other), lands=True),
    "was in another field": Scenario(lambda target, _: target.other.grab_focus(), lands=True),
    "was minimised": Scenario(lambda target, _: minimise(target), lands=True),
    "had quit": Scenario(lambda target, _: kill(target), lands=False, quits=True),
    "hung": Scenario(lambda target, _: stop_for_a_while(target), lands=False),
    "switches away": Scenario(then=lambda target, other: activate(other)),
    "clicks into another window": Scenario(then=lambda target, other: click(other.field)),
    "clicks into another field": Scenario(then=lambda target, _: click(target.other)),
    "comes back and leaves again": Scenario(lambda target, other: activate(other),
                                            lambda target, other: activate(other)),
    "leaves the field and then the window": Scenario(lambda target, _: target.other.grab_focus(),
                                                     lambda target, other: activate(other)),
    "leaves the field and clicks there again": Scenario(
        lambda target, _: target.other.grab_focus(), lambda target, _: click(target.other)),
    "minimises": Scenario(then=lambda target, _: minimise(target)),
    "quits": Scenario(then=lambda target, _: kill(target), quits=True),
    "hangs": Scenario(then=lambda target, _: stop_for_a_while(target)),
}


def moments(name):
    """In the first wait of a paste, and in the second: for what happens after the release."""
    return (0, 0.2) if SCENARIOS[name].then else (0,)


class Trial:
    """One paste. `problems` lists what was wrong with it."""

    def __init__(self, desk, target, other, name, moment=0, modifiers_held=False,
                 may_give_up=False):
        self.desk, self.target, self.other = desk, target, other
        self.may_give_up = may_give_up
        self.name, self.moment, self.modifiers_held = name, moment, modifiers_held
        self.problems = []
        self.report = None

    def __str__(self):
        return (f"{self.target.name:10} {self.name}"
                + (f" after {1000 * self.moment:.0f} ms" if SCENARIOS[self.name].then else "")
                + (", with the modifiers held" if self.modifiers_held else ""))

    def run(self, is_trusted=True):
        """Does it all. Without the grant of accessibility, the text is only copied."""
        scenario = SCENARIOS[self.name] if is_trusted else Scenario(lands=False)
        token = self.desk.token()
        self.target.focus()
        until(lambda: answers_at_once(self.target), 20, f"an answer of {self.target.name}")
        self.desk.probe.prepare(token)
        run("xdotool", "keydown", "--delay", "0", *keys.SHORTCUT, check=True)
        try:
            pressed = self.desk.probe.wait("press")
            element = self.target.field.path if is_trusted else None
            if (pressed.get("process"), pressed.get("element")) != (self.target.pid, element):
                self.problems.append(f"the target was not captured: {pressed}")
            if scenario.meanwhile:
                scenario.meanwhile(self.target, self.other)
                time.sleep(0.3)  # some time before the release: editors tell of it late
            first = ("space",) if self.modifiers_held else tuple(reversed(keys.SHORTCUT))
            run("xdotool", "keyup", "--delay", "0", *first, check=True)
            if scenario.then:
                time.sleep(self.moment)
                scenario.then(self.target, self.other)
            self.report = self.desk.probe.wait("release")
        finally:
            run("xdotool", "keyup", "--delay", "0", *reversed(keys.SHORTCUT), check=True)
        self._check(scenario, token)
        if scenario.quits:
            self.desk.reopen(self.target)
        elif "minimise" in self.name:
            self.target.focus()
            activate(self.other)  # for Chromium, see below
        return self

    def _check(self, scenario, token):
        pasted = self.report["pasted"]
        gave_up = scenario.lands and not pasted and self.may_give_up
        if scenario.lands is not None and pasted != scenario.lands and not gave_up:
            self.problems.append(f"pasted: {pasted}")
        if self.report["blocked"] > 1000 * MOST_BLOCKED:
            self.problems.append("Lorvane stood still")
        if editors.clipboard() != token:
            self.problems.append(f"on the clipboard: {editors.clipboard()}")
        # A stopped application goes on after 1.2 s; what it types too late must be seen, too.
        time.sleep(1.4 if self.name in ("hung", "hangs") else 0.1)
        # Brought back from an icon, Chromium ignores every key until its window gets the focus once
        # more, the keys of a person too (with Openbox and without a compositor).
        is_deaf = self.target.name == "chromium" and self.name == "was minimised"
        if pasted and scenario.lands and not is_deaf:
            try:
                until(lambda: self.desk.traces(token), 3, "the text")
            except TimeoutError:
                self.problems.append("the text did not arrive")
        elif pasted:
            time.sleep(0.4)
        for editor, element, count in self.desk.traces(token):
            if (editor, element) != (self.target, self.target.field):
                self.problems.append(f"the text is in the wrong place: {element} of {editor.name}")
            elif count > 1 or not pasted:
                self.problems.append(f"the text is there {count} times after {pasted}")


def trials(desk, random, count, report=print):
    """Runs random trials and gives those that went wrong."""
    failed = []
    for number in range(count):
        target, other = random.sample(desk.editors, 2)
        name = random.choice(list(SCENARIOS))
        # Half of the moments are close to the last looks before the keystroke.
        near = random.choice(LAST_CHECKS) + random.uniform(-0.03, 0.01)
        moment = random.choice((random.uniform(0, LONGEST), near))
        # An editor on a busy machine may be too slow for the paste; that is no harm.
        trial = Trial(desk, target, other, name, moment, random.random() < 0.5, may_give_up=True)
        trial.run()
        report(f"{number + 1:4} {trial}: {trial.report}"
               + "".join(f"\n     PROBLEM: {problem}" for problem in trial.problems))
        if trial.problems:
            failed.append(trial)
    return failed
