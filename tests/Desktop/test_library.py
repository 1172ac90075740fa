import json
import os
from pathlib import Path

from lorvane_desktop.session import run
from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.waiting import until

RECORDS = [("Zwei Zeilen,\ngrößer 🎤.", "2026-03-14T09:26:53Z"), ("Older.", "2026-03-13T21:05:00Z")]
LIBRARY = {
    "schemaVersion": 2,
    "history": [{"id": f"00000000-0000-4000-8000-00000000000{number}", "createdAt": date,
                 "duration": 1.5, "text": text}
                for number, (text, date) in enumerate(RECORDS)],
    "vocabulary": [], "snippets": [], "scratchpad": "",
    "settings": {"autoPaste": False, "languageIdentifier": "en-US", "removeFillers": True,
                 "smartPunctuation": True},
}


class LibraryOnTheDesktop(DesktopTest):
    def prepare(self):
        folder = Path(os.environ["XDG_DATA_HOME"]) / "Lorvane"
        folder.mkdir()
        (folder / "library.json").write_text(json.dumps(LIBRARY))

    def test_the_history_is_exported_through_the_save_dialog_with_the_keys(self):
        self.lorvane.press("History")
        button = until(lambda: self.lorvane.window.find("Export", role="push button|button"), 5,
                       "the button")
        button.focus()
        target = self.session.home / "exported.txt"
        run("xdotool", "key", "space")
        until(self.dialog_is_in_front, 5, "the save dialog")
        run("xdotool", "key", "Escape")
        until(lambda: not self.dialog_is_in_front(), 5, "the end of the dialog")
        self.assertEqual(self.lorvane.message(), "")
        # A screen reader's press is answered at once, not at the end of the dialog.
        button.press()
        until(self.dialog_is_in_front, 5, "the save dialog")
        run("xdotool", "type", "--delay", "5", str(target))
        run("xdotool", "key", "Return")
        self.lorvane.wait_for("History exported.")
        self.assertEqual(target.stat().st_mode & 0o777, 0o600)
        blocks = target.read_text(encoding="utf-8").split("\n\n---\n\n")
        self.assertEqual([block.split("\n", 1)[1] for block in blocks],
                         [text for text, _ in RECORDS])
        for block, (_, date) in zip(blocks, RECORDS):
            self.assertIn(date[:4], block.split("\n", 1)[0])

    @staticmethod
    def dialog_is_in_front():
        return "Save As" in run("xdotool", "getactivewindow", "getwindowname")
