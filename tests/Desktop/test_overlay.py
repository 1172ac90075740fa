from lorvane_desktop import accessibility, editors, keys, lorvane, microphone, voices
from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.waiting import until


class Overlay(DesktopTest):
    def test_shows_three_modes_and_never_takes_the_focus(self):
        editor = editors.chromium(self.session)
        voice = voices.prompts(self.session, "queue-periodic-announce")
        before = lorvane.window_with_keys()
        self.assertFalse(lorvane.overlay_is_shown())

        with keys.held_shortcut():
            until(lorvane.overlay_is_shown, 5, "the overlay")
            self.session.screenshot("1-preparing")
            self.check_focus(before, editor)
            self.lorvane.wait_for(lorvane.LISTENING)
            speech = microphone.say(self.session, voice)
            until(lambda: len(self.lorvane.transcript().split()) > 3, lorvane.FINISH,
                  "live text")
            self.session.screenshot("2-recording")
            self.assertTrue(lorvane.overlay_is_shown())
            self.check_focus(before, editor)
            speech.wait()

        self.lorvane.wait_for(lorvane.TRANSCRIBING)
        self.session.screenshot("3-transcribing")
        self.check_focus(before, editor)
        self.lorvane.wait_for(lorvane.PASTED, seconds=lorvane.FINISH)
        until(lambda: not lorvane.overlay_is_shown(), 5, "the end of the overlay")
        self.check_focus(before, editor)

    def check_focus(self, before, editor):
        self.assertEqual(lorvane.window_with_keys(), before)
        self.assertTrue(editor.field.has_state(accessibility.FOCUSED))
