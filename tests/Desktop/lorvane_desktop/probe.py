"""The shortcut and the paste of Lorvane without its speech (PasteProbe.cpp)."""

import json
import os
import select
import subprocess
import time

from .session import BINARY


class Probe:
    def __init__(self, session):
        reader, writer = os.pipe()
        self._process = session.spawn("paste-probe", BINARY.parent / "paste-probe",
                                      stdin=subprocess.PIPE, stdout=writer)
        os.close(writer)
        self._reader = reader
        self._lines = b""
        status = self.wait("ready", 10)["status"]
        if status != 0:
            raise RuntimeError(f"the shortcut is refused with {status}")

    def prepare(self, text):
        """Sets what the next release pastes."""
        self._process.stdin.write(json.dumps({"text": text}).encode() + b"\n")
        self._process.stdin.flush()

    def wait(self, event, seconds=5):
        """The next report, which must be of that event."""
        end = time.monotonic() + seconds
        while b"\n" not in self._lines:
            left = end - time.monotonic()
            if left <= 0 or not select.select([self._reader], [], [], left)[0]:
                raise TimeoutError(f"no {event} in {seconds} s")
            data = os.read(self._reader, 4096)
            if not data:
                raise RuntimeError("the probe has ended")
            self._lines += data
        line, self._lines = self._lines.split(b"\n", 1)
        report = json.loads(line)
        if report["event"] != event:
            raise RuntimeError(f"not a {event}: {report}")
        return report
