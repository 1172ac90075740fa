import json

from lorvane_desktop.accessibility import CHECKED, SHOWING
from lorvane_desktop.lorvane import APPLICATION_ID
from lorvane_desktop.session import run
from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.waiting import until


class Settings(DesktopTest):
    """The pages as a screen reader finds them on the real bus, with the real grants behind them."""

    def test_a_screen_reader_reads_and_changes_everything(self):
        self.check_settings()
        self.check_scratchpad()
        self.check_guide()

    def check_settings(self):
        self.lorvane.press("Settings")
        self.find("A few thoughtful defaults. Adjust them to fit the way you work.", "label")
        self.find("Allowed. Voice recording is available.", "label")
        for button in ("Open setup guide", "Preview mini window", "Set up microphone"):
            self.find(button, "push button")
        # What is out of view comes into it with the focus.
        self.find("Refresh", "push button", states=()).focus()
        self.find("Refresh", "push button").press()

        for name, key in (("Smart punctuation", "smartPunctuation"),
                          ("Remove filler words", "removeFillers"),
                          ("Paste button recordings", "autoPaste")):
            switch = self.find(name, "check box", states=())
            before = switch.has_state(CHECKED)
            switch.press()
            until(lambda: switch.has_state(CHECKED) != before, 10, f"the change of “{name}”")
            until(lambda: self.settings().get(key) == (not before), 10,
                  f"“{key}” in the library")

        picker = self.find("Recognition language", "combo box", states=())
        picker.press()
        self.find("Deutsch", "list item").press()
        until(lambda: self.settings().get("languageIdentifier") == "de-DE", 10, "German")
        until(lambda: picker.description() == "Deutsch", 10, "the chosen language")

    def check_scratchpad(self):
        self.lorvane.press("Scratchpad")
        editor = self.find("Scratchpad text", "text")
        editor.focus()
        run("xdotool", "type", "--delay", "20", "two words")
        until(lambda: editor.text() == "two words", 10, "the typed text")
        self.find("2 words", "label")
        until(lambda: self.library().get("scratchpad") == "two words", 10,
              "the text in the library")
        self.lorvane.press("Clear…")
        self.find("Clear your scratchpad?", "heading")
        self.lorvane.press("Clear scratchpad")
        until(lambda: editor.text() == "", 10, "the empty pad")

    def check_guide(self):
        self.lorvane.press("Settings")
        self.lorvane.press("Set up microphone")
        self.find("2 of 5", "label")
        self.find("Access is enabled", "label")
        for answer, status, request in (
                ("no", "Waiting for your permission", "Allow microphone"),
                ("yes", "Access is enabled", "Already allowed")):
            # Nobody presses “Check again”: the guide looks once a second.
            self.session.grant("devices", "microphone", APPLICATION_ID, answer)
            self.find(status, "label")
            self.find(request, "push button")
        self.find("Open Microphone settings", "push button")
        self.find("Show this app in Finder", "push button")
        self.lorvane.press("Set up later")
        until(lambda: not self.lorvane.application.find("2 of 5", states=(SHOWING,)), 10,
              "the end of the guide")

    def find(self, name, role, states=(SHOWING,)):
        return until(lambda: self.lorvane.application.find(name, role, states), 10,
                     f"the {role} “{name}”")

    def library(self):
        file = self.lorvane.folder / "library.json"
        return json.loads(file.read_text()) if file.exists() else {}

    def settings(self):
        return self.library().get("settings", {})
