import os
import signal
import subprocess

from lorvane_desktop import accessibility, editors, keys, voices
from lorvane_desktop.lorvane import CANCELLED, FINISH, LISTENING, NO_SPEECH, Lorvane
from lorvane_desktop.session import BINARY, run
from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.tray import Panel
from lorvane_desktop.waiting import until

HINT = "[Hold ⌃⌥Space · release to paste]"
IDLE = ["Open Lorvane", "-", "Start Dictation", HINT, "-", "Quit Lorvane"]
BUSY = ["Open Lorvane", "-", "[Start Dictation]", HINT, "-", "Quit Lorvane"]
RECORDING = ["Open Lorvane", "-", "Finish Dictation", "Cancel Dictation", HINT, "-",
             "Quit Lorvane"]


class Lifecycle(DesktopTest):
    """The window, the tray item, the one instance, and every way to end."""

    def prepare(self):
        self.panel = Panel(self.session, os.environ["DBUS_SESSION_BUS_ADDRESS"])
        manager = self.session.spawn_and_read(
            "session-manager", [str(BINARY.parent / "session_manager"), "{}"])
        os.environ["SESSION_MANAGER"] = manager

    def windows(self):
        """The windows named Lorvane on the screen: the main one and the guide."""
        found = run("xdotool", "search", "--onlyvisible", "--name", "^Lorvane$").split()
        return [window for window in found
                if "_NET_WM_STATE" in run("xprop", "-id", window, "WM_STATE", "_NET_WM_STATE")
                and "Normal" in run("xprop", "-id", window, "WM_STATE")]

    def is_in_front(self):
        active = run("xdotool", "getactivewindow", "getwindowpid").strip()
        return active == str(self.lorvane.process.pid)

    def close_window(self):
        until(self.is_in_front, 5, "Lorvane in front")
        run("xdotool", "key", "alt+F4")
        until(lambda: not self.windows(), 5, "the closing of the window")
        self.assertIsNone(self.lorvane.process.poll())

    def test_the_tray_menu_follows_the_dictation(self):
        item = self.panel.item()
        self.assertEqual(item.menu(), IDLE)
        waveform = item.property("IconPixmap")
        item.choose("Start Dictation")
        self.lorvane.wait_for(LISTENING)
        until(lambda: item.menu() == RECORDING, 5, "the entries of a recording")
        self.assertNotEqual(item.property("IconPixmap"), waveform)
        item.choose("Cancel Dictation")
        self.lorvane.wait_for(CANCELLED)
        until(lambda: item.menu() == IDLE, 5, "the entries at rest")
        self.assertEqual(item.property("IconPixmap"), waveform)
        item.choose("Start Dictation")
        self.lorvane.wait_for(LISTENING)
        item.choose("Finish Dictation")
        menus = []
        until(lambda: menus.append(item.menu()) or menus[-1] == IDLE, FINISH,
              "the entries at rest")
        self.assertEqual([menu for menu in menus if menu not in (RECORDING, BUSY, IDLE)], [])

    def test_the_window_closes_and_opens_again_and_nothing_ends(self):
        item = self.panel.item()
        self.close_window()
        item.choose("Open Lorvane")
        until(self.is_in_front, 5, "the window that the tray item opens")

        # Closed, it dictates and pastes as ever.
        self.close_window()
        editor = editors.mousepad(self.session)
        voice = voices.prompts(self.session, "agent-user")
        self.hold_and_say(voice, listening=lambda: "Finish Dictation" in item.menu())
        until(self.lorvane.history, FINISH, "the record")
        self.assert_arrives(editor, self.only_record())
        self.assertEqual(self.windows(), [])

        # A dictation that lacks a grant opens it with the guide.
        self.session.grant("devices", "microphone", "net.lorvane.Lorvane", "no")
        keys.tap_shortcut()
        until(lambda: len(self.windows()) == 2, 5, "the window with the guide")
        root = accessibility.application(self.session, self.lorvane.process)
        until(lambda: root.find("Allow microphone"), 5, "the microphone's step")

    def test_the_menu_of_the_window_is_opened_by_a_key(self):
        until(self.is_in_front, 5, "Lorvane in front")
        focused = accessibility.Focus(self.session)
        for label, message in (("Start Dictation", LISTENING), ("Finish Dictation", NO_SPEECH)):
            run("xdotool", "key", "F10")
            until(lambda: focused.name() == label, 5, f"the entry “{label}” to a screen reader")
            run("xdotool", "key", "Return")
            # Whoever is this quick waits for the model to be loaded.
            self.lorvane.wait_for(message, seconds=FINISH)

    def test_a_second_start_brings_the_first_forward(self):
        editors.mousepad(self.session)
        until(lambda: not self.is_in_front(), 5, "the editor in front")
        self.session.spawn("monitor", "dbus-monitor", "interface='org.freedesktop.Application'")
        calls = self.session.output / "monitor.log"
        until(lambda: "NameAcquired" in calls.read_text(), 5, "the monitor of the bus")
        tokens = {"DESKTOP_STARTUP_ID": "lorvane-1_TIME2", "XDG_ACTIVATION_TOKEN": "token-3"}
        second = subprocess.run([BINARY], timeout=10, env=os.environ | tokens)
        self.assertEqual(second.returncode, 0)
        for token in tokens.values():
            until(lambda: token in calls.read_text(), 5, "what the desktop gave the second start")
        until(self.is_in_front, 5, "the first Lorvane in front")
        self.close_window()
        self.assertEqual(subprocess.run([BINARY], timeout=10).returncode, 0)
        until(self.is_in_front, 5, "the first Lorvane with a window again")

    def test_every_end_keeps_the_recording_and_saves(self):
        manager = self.session.process("session-manager")
        ends = (lambda: self.panel.item().choose("Quit Lorvane"),
                lambda: self.lorvane.process.send_signal(signal.SIGTERM),
                lambda: manager.send_signal(signal.SIGUSR1))
        library = self.lorvane.folder / "library.json"
        for count, end in enumerate(ends, start=1):
            if count > 1:
                self.lorvane = self.start()
                library.unlink()
            self.lorvane.press("Start dictation")
            self.lorvane.wait_for(LISTENING)
            end()
            # A model that is being loaded is loaded to its end first, by then all is saved.
            self.assertEqual(self.lorvane.process.wait(FINISH), 0)
            recordings = self.lorvane.recordings()
            self.assertEqual(len(recordings), count)
            for recording in recordings:
                self.assertGreater((recording / "recording.caf").stat().st_size, 0)
            self.assertTrue(library.exists())
            self.assertEqual(self.lorvane.history(), [])


class FirstStart(DesktopTest):
    """With the guide on the window, which only its own buttons close."""

    def start(self):
        return Lorvane(self.session, is_set_up=False)

    def test_the_guide_does_not_hold_back_the_end(self):
        self.lorvane.process.send_signal(signal.SIGTERM)
        until((self.lorvane.folder / "library.json").exists, 10, "the library, saved at the end")
        # A model that is being loaded is loaded to its end first.
        self.assertEqual(self.lorvane.process.wait(FINISH), 0)
