import subprocess

from lorvane_desktop import accessibility, editors
from lorvane_desktop.lorvane import overlay_is_shown, overlay_place, window_with_keys
from lorvane_desktop.session import run
from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.waiting import until

WIDTH, HEIGHT, ABOVE_EDGE = 350, 88, 42
MIDDLE_OF_SCREEN = ((1280 - WIDTH) // 2, 800 - ABOVE_EDGE - HEIGHT, WIDTH, HEIGHT)


def pixels(*points):
    """The colours of points on the screen."""
    picture = subprocess.run(["import", "-silent", "-window", "root", "-depth", "8", "ppm:-"],
                             capture_output=True, check=True).stdout
    # Three lines tell its kind, size and depth.
    kind, size, _, colours = picture.split(b"\n", 3)
    assert kind == b"P6"
    width = int(size.split()[0])
    return [tuple(colours[3 * (y * width + x):][:3]) for x, y in points]


def corners(place):
    """A point just within each corner of the card's window, which its round corners leave out."""
    left, top, width, height = place
    return [(x, y) for x in (left + 1, left + width - 2) for y in (top + 1, top + height - 2)]


class OverlayWindow(DesktopTest):
    """The floating card over windows that nobody here wrote."""

    def show(self):
        self.lorvane.press("Start dictation")
        return until(overlay_place, 10, "the card")

    def hide(self):
        self.lorvane.press("Cancel")
        until(lambda: not overlay_is_shown(), 10, "the end of the card")

    def assert_on_top(self, place):
        """The card is dark; what lies beneath is light."""
        left, top, _, height = place
        point = (left + 10, top + height // 2)
        until(lambda: max(pixels(point)[0]) < 60, 5, "the card on top")

    def test_a_click_goes_through_the_card_and_the_focus_stays(self):
        beneath = editors.mousepad(self.session)
        run("wmctrl", "-i", "-r", beneath.window, "-b", "add,maximized_vert,maximized_horz")
        other = editors.featherpad(self.session)
        run("wmctrl", "-i", "-r", other.window, "-e", "0,0,0,400,300")
        other.focus()
        before = window_with_keys()
        place = self.show()
        self.assertEqual(place, MIDDLE_OF_SCREEN)
        self.assert_on_top(place)
        self.assertEqual(window_with_keys(), before)
        self.assertTrue(other.field.has_state(accessibility.FOCUSED))

        left, top, width, height = place
        run("xdotool", "mousemove", str(left + width // 2), str(top + height // 2), "click", "1")
        until(lambda: beneath.field.has_state(accessibility.FOCUSED), 5, "the click beneath")
        self.assert_on_top(place)
        self.hide()
        self.assertTrue(beneath.field.has_state(accessibility.FOCUSED))

    def test_lies_over_a_full_screen_window_on_every_workspace_with_clean_corners(self):
        editor = editors.mousepad(self.session)
        run("wmctrl", "-i", "-r", editor.window, "-b", "add,fullscreen")
        until(lambda: "FULLSCREEN" in run("xprop", "-id", editor.window, "_NET_WM_STATE"), 5,
              "the full screen")
        until(lambda: min(min(colour) for colour in pixels(*corners(MIDDLE_OF_SCREEN))) > 200, 5,
              "the empty page, which is light")
        beneath = pixels(*corners(MIDDLE_OF_SCREEN))
        for compositor in (False, True):
            if compositor:
                self.session.spawn("picom", "picom", "--backend", "xrender", "--config", "/dev/null")
                until(lambda: '"picom"' in run("xwininfo", "-root", "-tree"), 5, "the compositor")
            place = self.show()
            self.assertEqual(place, MIDDLE_OF_SCREEN)
            self.assert_on_top(place)
            until(lambda: pixels(*corners(place)) == beneath, 5, "clean corners")
            self.session.screenshot(f"over-full-screen-{compositor}")
            run("wmctrl", "-s", "1")
            until(lambda: "= 1" in run("xprop", "-root", "_NET_CURRENT_DESKTOP"), 5,
                  "the other workspace")
            self.assertEqual(overlay_place(), place)
            run("wmctrl", "-s", "0")
            self.assert_on_top(place)
            self.hide()

    def test_appears_on_the_monitor_with_the_pointer_above_its_panel(self):
        run("xrandr", "--setmonitor", "left", "640/170x800/210+0+0", "screen", check=True)
        run("xrandr", "--setmonitor", "right", "640/170x600/160+640+0", "none", check=True)
        # A panel of 40 at the lower edge of the right monitor, which ends above the desktop's.
        panel = editors.featherpad(self.session)
        run("xprop", "-id", panel.window, "-f", "_NET_WM_STRUT_PARTIAL", "32c", "-set",
            "_NET_WM_STRUT_PARTIAL", "0,0,0,240,0,0,0,0,0,0,640,1279", check=True)
        for x, left, bottom in ((1000, 640, 560), (100, 0, 800), (639, 0, 800), (640, 640, 560)):
            run("xdotool", "mousemove", str(x), "300")
            self.assertEqual(self.show(), (left + (640 - WIDTH) // 2,
                                           bottom - ABOVE_EDGE - HEIGHT, WIDTH, HEIGHT))
            self.hide()
