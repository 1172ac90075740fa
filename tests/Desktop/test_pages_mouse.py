import os
from pathlib import Path

from lorvane_desktop import editors, library
from lorvane_desktop.accessibility import SHOWING
from lorvane_desktop.session import run
from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.waiting import until

NEWEST = library.HISTORY[0][2]
DOWN = "5"  # the button that the wheel is


class Mouse(DesktopTest):
    """What a hand on the mouse expects of any page."""

    def prepare(self):
        library.write(Path(os.environ["XDG_DATA_HOME"]) / "Lorvane")

    def find(self, name, role):
        return until(lambda: self.lorvane.application.find(name, role, (SHOWING,)), 5, name)

    @staticmethod
    def selection():
        return run("xclip", "-selection", "primary", "-out", seconds=5)

    def test_texts_are_selected_by_a_drag_and_copied_and_the_wheel_scrolls(self):
        self.lorvane.press("History")
        text = self.find(NEWEST, "label|text|static")
        left, top, width, height = text.extents()
        run("xdotool", "mousemove", str(left + 1), str(top + 5), "mousedown", "1",
            "mousemove", str(left + width // 4), str(top + 5),
            "mousemove", str(left + width - 1), str(top + height - 3), "mouseup", "1")
        until(lambda: self.selection() == NEWEST, 5, "the dragged text as the selection")
        self.assertEqual(text.extents(), (left, top, width, height), "the page stays")
        run("xdotool", "key", "ctrl+c")
        until(lambda: editors.clipboard() == NEWEST, 5, "the copied text")
        run("xdotool", "mousemove", str(left + 20), str(top + 5), "click", "--repeat", "2",
            "--delay", "30", "1")
        until(lambda: self.selection() == "Good", 5, "a word by a double click")

        run("xdotool", "click", DOWN, "click", DOWN)
        until(lambda: text.extents()[1] < top, 5, "the scrolled page")
