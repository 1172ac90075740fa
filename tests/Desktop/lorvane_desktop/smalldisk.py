"""A small disk that can be full for a while, without anything else on the machine being short of
room. Mounting it takes root."""

import contextlib
import ctypes
import os

_CLONE_NEWNS = 0x20000
_MS_REC, _MS_PRIVATE = 0x4000, 0x40000


class SmallDisk:
    """Mounts itself on a folder. Only this process and those that it starts see it, and with the
    last of them it goes."""

    def __init__(self, folder, megabytes=64):
        self._filling = folder / "filling"
        libc = ctypes.CDLL(None, use_errno=True)
        size = f"size={megabytes}m".encode()
        if (libc.unshare(_CLONE_NEWNS) != 0
                or libc.mount(b"none", b"/", None, _MS_REC | _MS_PRIVATE, None) != 0
                or libc.mount(b"tmpfs", os.fsencode(folder), b"tmpfs", 0, size) != 0):
            number = ctypes.get_errno()
            raise OSError(number, f"a small disk can't be mounted: {os.strerror(number)}")

    def fill(self):
        with open(self._filling, "ab", buffering=0) as file:
            for size in (1 << 20, 1 << 12):
                with contextlib.suppress(OSError):
                    while file.write(bytes(size)) == size:
                        pass

    def make_room(self):
        self._filling.unlink(missing_ok=True)
