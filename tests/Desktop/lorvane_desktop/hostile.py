"""Files that no Lorvane wrote, to be put where it looks for its own. What is text lies in
tests/Desktop/hostile; what is binary, huge or no file at all is made here."""

import hashlib
import os
import stat
from pathlib import Path

from .session import BINARY

FILES = Path(__file__).resolve().parents[1] / "hostile"
FOREIGN = Path("/usr/bin/true")


def copy_of(name):
    return lambda path: path.write_bytes((FILES / name).read_bytes())


def _huge(path):
    with path.open("wb") as file:
        file.truncate(400 << 20)


def _huge_and_deep(path):
    path.write_bytes(b'{"history":' + b"[" * (8 << 20))


LIBRARIES = {
    **{file.stem: copy_of(f"libraries/{file.name}")
       for file in sorted((FILES / "libraries").iterdir())},
    "foreign": lambda path: path.write_bytes(FOREIGN.read_bytes()),
    "huge": _huge,
    "deep": _huge_and_deep,
    "folder": Path.mkdir,
    "pipe": os.mkfifo,
    "device": lambda path: path.symlink_to("/dev/zero"),
    "circle": lambda path: path.symlink_to(path.name),
}

USER_DEFAULTS = {
    **{file.stem: copy_of(f"user-defaults/{file.name}")
       for file in sorted((FILES / "user-defaults").iterdir())},
    "foreign": lambda path: path.write_bytes(FOREIGN.read_bytes()),
    "one long line": lambda path: path.write_bytes(b"[General]\nx=" + b"\\x41," * (1 << 20)),
    "folder": Path.mkdir,
    "pipe": os.mkfifo,
    "circle": lambda path: path.symlink_to(path.name),
}
# What is no settings file. The others have odd values only.
NO_USER_DEFAULTS = ("another-programs", "no-sections", "foreign", "folder", "pipe", "circle")


def fill_recovery(folder):
    """What others may leave among the kept recordings: cut off, foreign, oversized, missing."""
    names = iter(f"00000000-0000-4000-8000-00000000000{number}" for number in range(9))

    def recording():
        path = folder / next(names)
        path.mkdir(parents=True)
        return path / "recording.caf"

    recording().write_bytes(b"caff\0\1\0\0desc\0\0\0\0\0\0\0\x20")
    recording().write_bytes(FOREIGN.read_bytes())
    with recording().open("wb") as file:
        file.truncate(1 << 40)
    recording()
    recording().symlink_to("/dev/zero")
    (folder / "notes.txt").write_text("mine\n")


def state(*folders):
    """Everything below some folders, to be compared: kind and mode, time of the last change, and
    the bytes (of what is huge, the size alone)."""
    def of(path):
        about = path.lstat()
        contents = about.st_size
        if stat.S_ISLNK(about.st_mode):
            contents = os.readlink(path)
        elif stat.S_ISREG(about.st_mode) and about.st_size < 64 << 20:
            contents = hashlib.sha256(path.read_bytes()).hexdigest()
        return about.st_mode, about.st_mtime_ns, contents

    return {str(path): of(path)
            for folder in folders for path in (folder, *sorted(folder.rglob("*")))}


def bound_by_modes(session):
    """The program as one that the modes of files hold for, which they don't for root."""
    if os.geteuid() != 0:
        return BINARY
    script = session.home / "bound-by-modes"
    script.write_text("#!/bin/sh\nexec setpriv --bounding-set=-dac_override,-dac_read_search -- "
                      f"'{BINARY}'\n")
    script.chmod(0o700)
    return script
