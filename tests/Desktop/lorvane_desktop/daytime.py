"""The time of day as one program sees it, which a test can set back while the program runs."""

from pathlib import Path

# The loader puts the machine's own folder for $LIB.
LIBRARY = "/usr/$LIB/faketime/libfaketime.so.1"


class Daytime:
    """`command` goes before the program's own. Only the time of day is changed: what a program waits
    for goes on."""

    def __init__(self, folder):
        self._file = Path(folder) / "time-of-day"
        self._behind = 0
        self.set_back(0)
        self.command = ("env", f"LD_PRELOAD={LIBRARY}", f"FAKETIME_TIMESTAMP_FILE={self._file}",
                        "FAKETIME_NO_CACHE=1", "FAKETIME_DONT_FAKE_MONOTONIC=1")

    def set_back(self, seconds):
        """Sets the clock back by that much, at once."""
        self._behind += seconds
        new = self._file.with_suffix(".new")
        new.write_text(f"-{self._behind:.3f}\n")
        new.replace(self._file)
