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

    def assert_selected(self, words, text, place):
        """Waits until exactly these words of a text are selected, which was at a place before."""
        try:
            until(lambda: self.selection() == words, 5, f"“{words}” as the selection")
        except TimeoutError as error:
            raise TimeoutError(f"{error}; selected is “{self.selection()}”, and the text went from "
                               f"{place} to {text.extents()}") from None

    def test_texts_are_selected_by_a_drag_and_copied_and_the_wheel_scrolls(self):
        self.lorvane.press("History")
        text = self.find(NEWEST, "label|text|static")
        left, top, width, height = place = text.extents()
        run("xdotool", "mousemove", str(left + 1), str(top + 5), "mousedown", "1",
            "mousemove", str(left + width // 4), str(top + 5),
            "mousemove", str(left + width - 1), str(top + height - 3), "mouseup", "1")
        self.assert_selected(NEWEST, text, place)
        self.assertEqual(text.extents(), place, "the page stays")
        run("xdotool", "key", "ctrl+c")
        until(lambda: editors.clipboard() == NEWEST, 5, "the copied text")
        run("xdotool", "mousemove", str(left + 20), str(top + 5), "click", "--repeat", "2",
            "--delay", "30", "1")
        self.assert_selected("Good", text, place)
        run("xdotool", "click", "3")
        left_entry, top_entry, *_ = self.find("Copy", "menu item").extents()
        run("xdotool", "mousemove", str(left_entry + 9), str(top_entry + 9), "click", "1")
        until(lambda: editors.clipboard() == "Good", 5, "the word that was copied by the menu")

        button, top_button, *_ = self.find("Copy dictation", "push button").extents()
        run("xdotool", "mousemove", str(button - 3), str(top_button - 2), "click", "1")
        until(lambda: editors.clipboard() == NEWEST, 5, "what a click just beside the button copies")
        self.lorvane.press("Dismiss message")
        until(lambda: text.extents()[1] == top, 5, "the page without its message")

        steps = [word for y in range(top - 40, top - 140, -20)
                 for word in ("mousemove", str(left + width // 2), str(y))]
        run("xdotool", "mousemove", str(left + width // 2), str(top - 20), "mousedown", "1", *steps,
            "mouseup", "1")
        self.session.settle()
        self.assertEqual(text.extents()[1], top, "a drag on its ground doesn't move the page")

        run("xdotool", "click", DOWN, "click", DOWN)
        until(lambda: text.extents()[1] < top, 5, "the scrolled page")
