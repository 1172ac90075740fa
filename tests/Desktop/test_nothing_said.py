import signal

from lorvane_desktop import editors, keys, voices
from lorvane_desktop.lorvane import FINISH, NO_SPEECH, RELEASED_EARLY, overlay_is_shown
from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.waiting import until


class NothingSaid(DesktopTest):
    """Holds that give no words leave no record, no audio and no text anywhere."""

    def test_a_noise_is_no_speech(self):
        editor = editors.mousepad(self.session)
        self.hold_and_say(voices.noise(self.session, 5))
        self.lorvane.wait_for(NO_SPEECH, seconds=FINISH)
        self.check_nothing_is_left(editor)

    def test_a_tap_is_released_before_the_microphone_is_ready(self):
        editor = editors.mousepad(self.session)
        # Both keys wait when Lorvane goes on, however late this machine sends them.
        self.lorvane.process.send_signal(signal.SIGSTOP)
        keys.tap_shortcut()
        self.lorvane.process.send_signal(signal.SIGCONT)
        self.lorvane.wait_for(RELEASED_EARLY)
        self.check_nothing_is_left(editor)

    def check_nothing_is_left(self, editor):
        until(lambda: not self.lorvane.recordings(), 5, "an empty recovery folder")
        until(lambda: not overlay_is_shown(), 5, "the end of the overlay")
        self.assertEqual(self.lorvane.history(), [])
        self.assertEqual(editors.clipboard(), "")
        self.assertEqual(editor.text(), "")
