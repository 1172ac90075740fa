import os
import re
import subprocess
import unittest

from lorvane_desktop.lorvane import Lorvane
from lorvane_desktop.session import Session, run
from lorvane_desktop.waiting import until

# What is set for the program, and how the pictures are called.
GRAPHICS = {
    "opengl": {"QT_QUICK_BACKEND": "rhi"},
    "chosen": {},
    "no-opengl": {"QT_XCB_GL_INTEGRATION": "none", "LIBGL_DRIVERS_PATH": "/nowhere"},
}
# Of the whole range of a colour, on average: smoothed edges differ by a little.
DIFFERENCE = 0.005


class SoftwareRendering(unittest.TestCase):
    def test_the_window_looks_the_same_with_and_without_opengl(self):
        session = self.enterContext(Session(self.id()))
        pictures = {}
        for name, variables in GRAPHICS.items():
            os.environ.update(variables)
            lorvane = Lorvane(session)
            for variable in variables:
                del os.environ[variable]
            lorvane.press("Settings")
            button = until(lambda: lorvane.window.find("Open setup guide"), 3, "the Settings page")
            # A window is black until its first frame, which is long in coming by OpenGL.
            until(lambda: min(self.colour(*button.extents())) > 200, 10, "the first frame")
            pictures[name] = self.still_picture(session, name)
            session.end(lorvane.process)

        for name in ("chosen", "no-opengl"):
            result = subprocess.run(["compare", "-metric", "MAE", pictures["opengl"],
                                     pictures[name], session.output / f"difference-{name}.png"],
                                    capture_output=True, text=True)
            difference = float(re.search(r"\(([\d.e-]+)\)", result.stderr)[1])
            print(f"Figure: picture of “{name}” differs from OpenGL's by {difference:.5f}")
            self.assertLess(difference, DIFFERENCE, name)

    @staticmethod
    def colour(left, top, _width, height):
        """Within the edge of a button."""
        return subprocess.run(["import", "-silent", "-window", "root", "-crop",
                               f"1x1+{left + 6}+{top + height // 2}", "-depth", "8", "rgb:-"],
                              capture_output=True, check=True).stdout

    def still_picture(self, session, name):
        last = None
        while True:
            picture = session.screenshot(name)
            content = picture.read_bytes()
            if content == last:
                return picture
            last = content
