import json
import os
import unittest
from pathlib import Path

from lorvane_desktop import accessibility, editors
from lorvane_desktop.accessibility import FOCUSED, SHOWING
from lorvane_desktop.lorvane import Lorvane
from lorvane_desktop.session import Session, run
from lorvane_desktop.waiting import until

LIBRARY = {
    "schemaVersion": 2,
    "history": [
        {"id": "3F2504E0-4F89-41D3-9A0C-0305E82C3301", "createdAt": "2026-03-14T09:26:53Z",
         "text": "Send the report today.", "duration": 95.7},
        {"id": "3F2504E0-4F89-41D3-9A0C-0305E82C3302", "createdAt": "2026-03-13T09:26:53Z",
         "text": "Hello", "duration": 0.5},
    ],
    "vocabulary": [
        {"id": "16FD2706-8BAF-433B-82EB-8C7FADA847DA", "phrase": "kube ctl",
         "replacement": "kubectl", "aliases": ["cube control"]},
    ],
    "snippets": [
        {"id": "7C9E6679-7425-40DE-944B-E07FC1F90AE7", "trigger": "sign off",
         "content": "Kind regards,\nMe"},
    ],
    "scratchpad": "",
    "settings": {"autoPaste": False, "languageIdentifier": "en-AU", "removeFillers": True,
                 "smartPunctuation": True},
}


class LibraryPages(unittest.TestCase):
    """History, Dictionary and Snippets over the accessibility bus, with the real keyboard."""

    def setUp(self):
        self.session = self.enterContext(Session(self.id()))
        folder = Path(os.environ["XDG_DATA_HOME"]) / "Lorvane"
        folder.mkdir()
        (folder / "library.json").write_text(json.dumps(LIBRARY))
        self.lorvane = Lorvane(self.session)
        self.addCleanup(self.session.screenshot, "end")

    def library(self):
        return json.loads((self.lorvane.folder / "library.json").read_text())

    def root(self):
        """All windows of the program."""
        return accessibility.application(self.session, self.lorvane.process)

    def shown(self):
        return [element.name() for element in self.root().walk()
                if element.has_state(SHOWING)]

    def wait_for(self, name, role=None):
        return until(lambda: self.root().find(name, role=role, states=(SHOWING,)), 5,
                     f"“{name}”")

    def wait_for_focus(self, name):
        """Keys go to the sheet from then on."""
        until(lambda: self.wait_for(name, "text|entry").has_state(FOCUSED), 5,
              f"the focus on “{name}”")

    def wait_until_gone(self, name):
        until(lambda: not self.root().find(name, states=(SHOWING,)), 5,
              f"the end of “{name}”")

    def press(self, name):
        self.wait_for(name, role="push button|menu item").press()

    def focus(self, name):
        field = self.wait_for(name, role="text|entry")
        field.focus()
        until(lambda: field.has_state(FOCUSED), 5, f"the focus on “{name}”")

    def wait_for_fit(self, button, margin):
        """The sheet ends at its margin below the last button."""
        def below():
            _, top, _, height = self.wait_for(button, role="push button").extents()
            sheet = next(window for window in self.root().children()
                         if window.find(button, states=(SHOWING,)))
            _, sheet_top, _, sheet_height = sheet.extents()
            return sheet_top + sheet_height - (top + height)
        until(lambda: below() == margin, 5, f"the margin below “{button}”")

    def test_the_pages_can_be_read_searched_and_edited(self):
        self.press("History")
        self.wait_for("2 dictations")
        shown = self.shown()
        for text in ("95s", "4 words", "1 words", "Send the report today.", "Hello", "Export",
                     "History options", "Copy dictation", "Delete dictation"):
            self.assertIn(text, shown)
        self.focus("Search your dictations")
        run("xdotool", "type", "REPORT")
        self.wait_for("1 dictation")
        run("xdotool", "type", "s")
        self.wait_for("No matching thoughts.")
        self.press("Clear search")
        self.wait_for("2 dictations")
        self.press("Copy dictation")
        until(lambda: editors.clipboard() == "Send the report today.", 5, "the copied text")
        self.press("Delete dictation")
        self.wait_for("1 dictation")
        self.press("History options")
        self.press("Delete all history…")
        self.wait_for("This removes all saved dictations from Lorvane. This can’t be undone.")
        self.wait_for_fit("Cancel", margin=24)
        self.press("Cancel")
        self.wait_until_gone("Delete all dictation history?")

        self.press("Dictionary")
        self.wait_for("Recognizes: kube ctl · cube control")
        self.press("Add name or phrase")
        self.wait_for("One name. Many ways to hear it.")
        self.wait_for_fit("Save entry", margin=30)
        self.press("Add another variant")
        self.wait_for_fit("Save entry", margin=30)
        self.press("Remove variant")
        self.wait_for_fit("Save entry", margin=30)
        self.focus("Preferred name or phrase")
        # The name has the focus; the next field is the first variant.
        self.wait_for_focus("Preferred name or phrase")
        run("xdotool", "type", "Siobhan")
        run("xdotool", "key", "Tab")
        run("xdotool", "type", "Cube Control")
        run("xdotool", "key", "Return")
        self.wait_for("“Cube Control” already belongs to another name. Edit that entry or choose "
                      "another variant.")
        run("xdotool", "key", "ctrl+a")
        run("xdotool", "type", "shiv on")
        run("xdotool", "key", "Return")
        self.wait_for("Recognizes: shiv on")
        self.press("Edit kubectl")
        self.wait_for("Edit name and variants")
        self.wait_for_focus("Preferred name or phrase")
        run("xdotool", "key", "Escape")
        self.wait_until_gone("Edit name and variants")

        self.press("Snippets")
        self.wait_for("Kind regards,\nMe")
        self.press("Edit sign off")
        self.focus("Snippet text")
        run("xdotool", "key", "ctrl+End", "Return")
        run("xdotool", "type", "PS")
        self.press("Save snippet")
        self.wait_for("Kind regards,\nMe\nPS")
        self.press("Delete sign off")
        self.wait_for("A shortcut for your voice.")

        def saved():
            library = self.library()
            return (len(library["history"]) == 1 and library["snippets"] == []
                    and [entry["phrase"] for entry in library["vocabulary"]]
                    == ["kube ctl", "shiv on"])
        until(saved, 5, "the saved library")
