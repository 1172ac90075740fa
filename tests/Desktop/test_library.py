import json
import os
from pathlib import Path

from lorvane_desktop.portal import Portal
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
        self.portal = Portal(self.session.bus)

    def export_button(self):
        self.lorvane.press("History")
        return until(lambda: self.lorvane.window.find("Export", role="push button|button"), 5,
                     "the button")

    def test_the_history_is_exported_through_the_save_dialog_with_the_keys(self):
        button = self.export_button()
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

    def test_the_history_is_exported_through_the_portals_dialog_where_it_has_one(self):
        self.portal.show_file_dialogs()
        button = self.export_button()
        active = int(run("xdotool", "getactivewindow"))
        button.press()
        until(lambda: self.portal.questions, 5, "the question of the portal")
        window, options = self.portal.questions[0]
        self.assertEqual(window, f"x11:{active:x}")
        self.assertEqual(options["current_name"], "Lorvane History.txt")

        target = self.session.home / "Größer, “so” 100% #1 🎤 'x' \"y\".txt"
        self.portal.choice = target
        button.press()
        self.lorvane.wait_for("History exported.")
        self.assertIn(RECORDS[0][0], target.read_text(encoding="utf-8"))
        self.assertEqual([path.name for path in self.session.home.glob("*.txt")], [target.name],
                         "nothing was written for the question that was cancelled")

        self.portal.choice = "/proc/not-to-be-written.txt"
        button.press()
        self.lorvane.wait_for("Export failed: ")
        self.assertEqual(len(self.portal.questions), 3)
        self.assertFalse(self.dialog_is_in_front())

    @staticmethod
    def dialog_is_in_front():
        return "Save As" in run("xdotool", "getactivewindow", "getwindowname")


class ExportOnAGtkDesktop(LibraryOnTheDesktop):
    def prepare(self):
        super().prepare()
        os.environ["QT_QPA_PLATFORMTHEME"] = "gtk3"

    def test_gtks_own_dialog_asks_where_the_portal_has_none(self):
        self.export_button().press()
        until(self.dialog_is_in_front, 5, "the save dialog")
        libraries = Path(f"/proc/{self.lorvane.process.pid}/maps").read_text()
        self.assertIn("/libgtk-3.so", libraries)
        target = self.session.home / "exported.txt"
        run("xdotool", "key", "ctrl+a")
        run("xdotool", "type", "--delay", "5", str(target))
        run("xdotool", "key", "Return")
        self.lorvane.wait_for("History exported.")
        self.assertIn(RECORDS[0][0], target.read_text(encoding="utf-8"))
