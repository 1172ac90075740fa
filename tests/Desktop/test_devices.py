import signal
import time

from lorvane_desktop import editors, keys, microphone, voices, wer
from lorvane_desktop.lorvane import FINISH, LISTENING, PASTED
from lorvane_desktop.session import run
from lorvane_desktop.testcase import PAUSE, DesktopTest
from lorvane_desktop.waiting import until

ENDED = ("Audio capture ended unexpectedly. Release the shortcut to recover the captured "
         "recording.")
NO_INPUT = "No microphone input is available. Check your audio input in System Settings."


class Devices(DesktopTest):
    """Microphones and sound servers that fail in the middle of a dictation, or before it."""

    def test_a_microphone_that_goes_leaves_what_was_said(self):
        self.lose(lambda: run("pactl", "unload-module", "module-remap-source", check=True))

    def test_a_sound_server_that_is_killed_leaves_what_was_said(self):
        self.lose(lambda: self.session.sound_server.send_signal(signal.SIGKILL))

    def lose(self, take_away):
        editor = editors.mousepad(self.session)
        voice = voices.prompts(self.session, "agent-user")
        with keys.held_shortcut():
            self.lorvane.wait_for(LISTENING)
            microphone.say(self.session, voice).wait()
            time.sleep(PAUSE)
            take_away()
            self.lorvane.wait_for(ENDED)
        until(self.lorvane.history, FINISH, "the record")
        until(lambda: not self.lorvane.message(), 5, "the end of the dictation")
        text = self.only_record()
        self.assertLessEqual(wer.errors(wer.words(voice.text), wer.words(text)), 1, text)
        self.assertEqual(editors.clipboard(), text)
        self.assertEqual(editor.text(), "")
        recording, = self.lorvane.recordings()
        self.assertEqual([file.name for file in recording.iterdir()], ["recording.caf"])

    def test_a_sound_server_that_hangs_holds_nothing_up(self):
        self.dictate_while(lambda: self.session.sound_server.send_signal(signal.SIGSTOP))
        self.session.sound_server.send_signal(signal.SIGCONT)

    def test_a_new_default_microphone_does_not_end_a_dictation(self):
        def change():
            run("pactl", "load-module", "module-null-sink", "sink_name=silence", check=True)
            run("pactl", "load-module", "module-remap-source", "source_name=other",
                "master=silence.monitor", check=True)
            run("pactl", "set-default-source", "other", check=True)
        self.dictate_while(change)

    def dictate_while(self, change):
        editor = editors.mousepad(self.session)
        voice = voices.prompts(self.session, "agent-user")
        with keys.held_shortcut():
            self.lorvane.wait_for(LISTENING)
            microphone.say(self.session, voice).wait()
            time.sleep(PAUSE)
            change()
        self.lorvane.wait_for(PASTED, seconds=FINISH)
        text = self.only_record()
        self.assert_arrives(editor, text)
        self.assertLessEqual(wer.errors(wer.words(voice.text), wer.words(text)), 1, text)
        self.assertEqual(self.lorvane.recordings(), [])

    def test_without_a_microphone_nothing_begins_until_it_comes_back(self):
        run("pactl", "unload-module", "module-remap-source", check=True)
        with keys.held_shortcut():
            self.lorvane.wait_for(NO_INPUT)
        self.assertEqual(self.lorvane.recordings(), [])
        run("pactl", "load-module", "module-remap-source", "source_name=microphone",
            "master=speech.monitor", check=True)
        run("pactl", "set-default-source", "microphone", check=True)
        self.dictate_while(lambda: None)
