import itertools
import os
import unittest
from pathlib import Path

from lorvane_desktop import editors, hostile, keys, microphone, program, voices
from lorvane_desktop.lorvane import LISTENING, PASTED, Lorvane
from lorvane_desktop.session import BINARY, Session
from lorvane_desktop.waiting import until

NOT_LOADED = "Could not load the library: "
NOT_SAVED = "Could not save the library: "
PRESERVED = " Saving is disabled to preserve the existing file. See README for recovery."
NO_SETUP_STATE = "Could not load the state of setup: "
PRESERVED_TOO = " Saving it is disabled to preserve the existing file. See README for recovery."
UNAVAILABLE = ("Speech recognition is unavailable for this language. Try another language or "
               "check your connection.")
SET_UP = "[General]\nLorvane.didCompleteSetup=true\n"


def cut_off(model):
    encoder = model / "tiny/encoder.onnx"
    contents = encoder.read_bytes()
    encoder.unlink()
    encoder.write_bytes(contents[:-1])


def missing_decoder(model):
    (model / "base/decoder.onnx").unlink()


def missing_manifest(model):
    (model / "manifest.json").unlink()


def manifest(name):
    def change(model):
        missing_manifest(model)
        hostile.copy_of(f"models/{name}")(model / "manifest.json")
    return change


class HostileFiles(unittest.TestCase):
    """Whatever lies where Lorvane looks for its files: it starts, says what is wrong, and
    overwrites nothing."""

    def setUp(self):
        self.session = self.enterContext(Session(self.id()))
        self.addCleanup(self.session.screenshot, "end")
        self.data = Path(os.environ["XDG_DATA_HOME"]) / "Lorvane"
        self.defaults = Path(os.environ["XDG_CONFIG_HOME"]) / "lorvane/lorvane.conf"

    def start(self, binary=BINARY):
        return Lorvane(self.session, is_set_up=False, binary=binary)

    def quit(self, lorvane):
        """Ends Lorvane, which saves first, if it may."""
        lorvane.process.terminate()
        self.assertEqual(lorvane.process.wait(60), 0)

    def state(self):
        """All of Lorvane's own folders."""
        return hostile.state(self.data, self.defaults.parent)

    def replace_files(self, folder):
        """A new set of folders for the next start, so that no trace of the last one is left."""
        root = self.session.home / folder
        self.data, self.defaults = root / "data/Lorvane", root / "config/lorvane/lorvane.conf"
        self.data.mkdir(parents=True)
        self.defaults.parent.mkdir(parents=True)
        os.environ.update(XDG_DATA_HOME=str(root / "data"), XDG_CONFIG_HOME=str(root / "config"))
        return root

    def test_no_library_is_overwritten_that_cannot_be_read(self):
        defaults = itertools.cycle(hostile.USER_DEFAULTS.items())
        binary = program.with_models(self.session, missing_manifest)  # quick to start and to end
        for name, make_library in hostile.LIBRARIES.items():
            defaults_name, make_defaults = next(defaults)
            with self.subTest(library=name, user_defaults=defaults_name):
                self.replace_files(f"library {name}")
                make_library(self.data / "library.json")
                make_defaults(self.defaults)
                hostile.fill_recovery(self.data / "Recovery")
                before = self.state()
                lorvane = self.start(binary)
                message = lorvane.wait_for(NOT_LOADED)
                self.assertTrue(message.endswith(PRESERVED), message)
                print(f"{name}: {message.removeprefix(NOT_LOADED).removesuffix(PRESERVED)}")
                self.quit(lorvane)
                self.assertEqual(self.state(), before)

    def test_no_user_defaults_are_overwritten_that_cannot_be_read(self):
        binary = program.with_models(self.session, missing_manifest)  # quick to start and to end
        for name, make_defaults in hostile.USER_DEFAULTS.items():
            with self.subTest(user_defaults=name):
                self.replace_files(f"user defaults {name}")
                make_defaults(self.defaults)
                before = hostile.state(self.defaults.parent)
                lorvane = self.start(binary)
                if name in hostile.NO_USER_DEFAULTS:
                    message = lorvane.wait_for(NO_SETUP_STATE)
                    self.assertIn(str(self.defaults), message)
                    self.assertTrue(message.endswith(PRESERVED_TOO), message)
                    lorvane.press("Set up later")
                else:
                    self.assertEqual(lorvane.message(), "")
                self.quit(lorvane)
                self.assertEqual(hostile.state(self.defaults.parent), before)

    def test_what_cannot_be_read_or_written_is_said_and_stays(self):
        root = self.replace_files("closed")
        hostile.copy_of("libraries/cut-off.json")(self.data / "library.json")
        self.defaults.write_text(SET_UP)
        library, binary = self.data / "library.json", hostile.bound_by_modes(self.session)
        for path, mode, said in ((library, 0, NOT_LOADED), (self.data, 0, NOT_LOADED),
                                 (root / "data", 0o500, NOT_SAVED)):
            with self.subTest(path=path.name, mode=mode):
                if said == NOT_SAVED:  # a home that is only read, and no library yet
                    library.unlink()
                    self.data.rmdir()
                before_mode = path.stat().st_mode
                before = hostile.state(root / "data", self.defaults.parent)
                path.chmod(mode)
                try:
                    lorvane = self.start(binary)
                    if said == NOT_SAVED:
                        with keys.held_shortcut():
                            lorvane.wait_for("The folder “")
                        self.edit(lorvane)
                    lorvane.wait_for(said)
                    self.quit(lorvane)
                finally:
                    path.chmod(before_mode)
                self.assertEqual(hostile.state(root / "data", self.defaults.parent), before)

    def edit(self, lorvane):
        """A change that would be saved."""
        lorvane.press("Settings")
        until(lambda: lorvane.window.find("Remove filler words", role="check box"),
              5, "a switch").press()

    def test_without_a_whole_model_no_dictation_begins(self):
        self.replace_files("models")
        self.defaults.write_text(SET_UP)

        changes = [cut_off, missing_decoder,
                   *(manifest(file.name) for file in sorted((hostile.FILES / "models").iterdir()))]
        for change in changes:
            with self.subTest(change=change):
                before = hostile.state(self.defaults.parent)
                lorvane = self.start(program.with_models(self.session, change))
                with keys.held_shortcut():
                    lorvane.wait_for(UNAVAILABLE)
                self.assertEqual(lorvane.recordings(), [])
                self.assertEqual(hostile.state(self.defaults.parent), before)
                self.quit(lorvane)

    def test_a_dictation_works_in_folders_of_any_name(self):
        self.replace_files("it's \"my\" 🎤 100%s <b>$HOME</b>\n`new\\line`; #?*")
        self.defaults.write_text(SET_UP)
        os.environ["HOME"] = str(self.data.parent)
        lorvane = self.start(program.with_models(self.session, lambda model: None))
        editor = editors.mousepad(self.session)
        voice = voices.prompts(self.session, "agent-loginok")
        with keys.held_shortcut():
            lorvane.wait_for(LISTENING)
            microphone.say(self.session, voice).wait()
        lorvane.wait_for(PASTED, 30)
        text = lorvane.history()[0]["text"]
        until(lambda: editor.text() == text, 5, f"“{text}” in mousepad")
        self.assertEqual(lorvane.recordings(), [])
        self.quit(lorvane)
