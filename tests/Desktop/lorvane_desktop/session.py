"""A desktop for one test: X server, window manager, session bus, accessibility bus and sound
server, all private, so that tests can run side by side, and all gone at the end."""

import os
import select
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

from gi.repository import Gio, GLib

from .waiting import until

REPOSITORY = Path(__file__).resolve().parents[3]
BINARY = Path(os.environ.get("LORVANE_BINARY", REPOSITORY / "build/release/lorvane")).resolve()

# The speech of a test goes into `speech`, whose monitor is the microphone. Without norewinds the
# null sink renders two seconds ahead, and a recording loses them. The other sink keeps whatever
# else plays on the desktop out of the microphone.
PULSE = """
load-module module-native-protocol-unix
load-module module-null-sink sink_name=speech rate=48000 channels=1 format=float32le norewinds=1
load-module module-remap-source source_name=microphone master=speech.monitor
load-module module-null-sink sink_name=speakers rate=48000 channels=2
set-default-sink speakers
set-default-source microphone
"""


class Session:
    """Use it in a with statement. It makes its environment this process's own, for a test and the
    tools that it calls live in one desktop. Logs and screenshots go to `output`."""

    def __init__(self, name, size="1280x800"):
        self.size = size
        self.output = BINARY.parent / "desktop" / name
        self.home = None
        self._processes = []
        self._named = {}

    def __enter__(self):
        shutil.rmtree(self.output, ignore_errors=True)
        self.output.mkdir(parents=True)
        # Not below the output folder: the path of a socket may have 107 characters at most.
        self.home = Path(tempfile.mkdtemp(prefix="lorvane-"))
        signal.signal(signal.SIGTERM, lambda *_: exit(1))
        try:
            self._start()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(self, *_):
        self.close()

    def _start(self):
        for name in ("run", "config", "cache", "data"):
            (self.home / name).mkdir(mode=0o700)
        os.environ.pop("WAYLAND_DISPLAY", None)
        os.environ.update({
            "HOME": str(self.home),
            "XDG_RUNTIME_DIR": str(self.home / "run"),
            "XDG_CONFIG_HOME": str(self.home / "config"),
            "XDG_CACHE_HOME": str(self.home / "cache"),
            "XDG_DATA_HOME": str(self.home / "data"),
            "XDG_CURRENT_DESKTOP": "X-Test",
            "XDG_SESSION_TYPE": "x11",
            "GSETTINGS_BACKEND": "memory",
            "LANG": "C.UTF-8",
            "LC_ALL": "C.UTF-8",
        })
        number = self.spawn_and_read(
            "xvfb", ["Xvfb", "-displayfd", "{}", "-screen", "0", f"{self.size}x24", "-dpi", "96",
                     "-nolisten", "tcp", "-noreset"])
        os.environ["DISPLAY"] = f":{number}"
        # With the first key by XTEST the server announces the map of another keyboard. A window
        # manager then lets all its keys go and grabs them anew, and a key that comes meanwhile isn't
        # its own: that first key has to be before it.
        run("xdotool", "key", "Shift_L", check=True)

        address = f"unix:path={self.home}/run/bus"
        self.spawn_and_read("dbus", ["dbus-daemon", "--session", f"--address={address}",
                                      "--print-address={}", "--nofork", "--nopidfile"])
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = address
        self.bus = connect(address)

        (self.home / "pulse.pa").write_text(PULSE)
        # All at once, for each takes its time.
        starts = [self.start_accessibility(), self.start_window_manager(),
                  self.start_sound_server()]
        for wait in starts:
            wait()

    # Each starts a part of the desktop, also anew once it was ended, and gives what waits for it.

    def start_accessibility(self):
        self.spawn("accessibility", "/usr/libexec/at-spi-bus-launcher", "--launch-immediately",
                   "--a11y=1")

        def wait():
            self.accessibility_bus = connect(until(self._accessibility_address, 10,
                                                   "the accessibility bus"))
            # Whoever misses the bus has the session bus start it, and it is off then.
            call(self.bus, "org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set",
                 GLib.Variant("(ssv)", ("org.a11y.Status", "IsEnabled", GLib.Variant("b", True))))
        return wait

    def start_window_manager(self):
        self.spawn("openbox", "openbox", "--sm-disable")
        return lambda: until(self._has_window_manager, 10, "the window manager")

    def _has_window_manager(self):
        """Whether the window that a window manager tells of is there; it may be an older one's."""
        told = run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK")
        window = told.rpartition("# ")[2].strip()
        return "window id" in told and window in run("xprop", "-id", window,
                                                     "_NET_SUPPORTING_WM_CHECK")

    def start_sound_server(self):
        self.sound_server = self.spawn(
            "pulseaudio", "pulseaudio", "-n", "-F", self.home / "pulse.pa", "--daemonize=no",
            "--exit-idle-time=-1", "--use-pid-file=no", "--log-target=stderr", "--realtime=no",
            "--high-priority=no")
        return lambda: until(lambda: "microphone" in run("pactl", "get-default-source"), 10,
                             "the sound server")

    def stop_for(self, seconds, processes=None):
        """Stops some processes, or all of the desktop, as if the machine slept."""
        processes = processes or [process for process in self._processes
                                  if process.poll() is None]
        for process in processes:
            os.killpg(process.pid, signal.SIGSTOP)
        time.sleep(seconds)
        for process in processes:
            os.killpg(process.pid, signal.SIGCONT)

    def spawn(self, name, *command, **options):
        """Starts a process that the session ends at its end. Its output goes to NAME.log."""
        with open(self.output / f"{name}.log", "ab") as log:
            streams = {"stdin": subprocess.DEVNULL, "stdout": log, "stderr": log}
            # Should this process be killed, its children are too.
            process = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", "--", *map(str, command)],
                                       start_new_session=True, **(streams | options))
        self._processes.append(process)
        self._named[name] = process
        return process

    def process(self, name):
        """The process that was last spawned under a name."""
        return self._named[name]

    def spawn_and_read(self, name, command):
        """Starts a process that writes a line into a descriptor (its number replaces the "{}" of
        the command) once it is ready, and gives that line."""
        reader, writer = os.pipe()
        self.spawn(name, *(word.replace("{}", str(writer)) for word in command), pass_fds=[writer])
        os.close(writer)
        with open(reader) as pipe:
            if not select.select([pipe], [], [], 15)[0]:
                raise TimeoutError(f"{name} did not get ready")
            line = pipe.readline().strip()
        if not line:
            raise RuntimeError(f"{name} did not start: {self.output / name}.log tells why")
        return line

    def _accessibility_address(self):
        # Asked before it has its name, the session bus would start another one, which is off.
        if not call(self.bus, "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "NameHasOwner",
                    GLib.Variant("(s)", ("org.a11y.Bus",)))[0]:
            return None
        try:
            return call(self.bus, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")[0]
        except GLib.Error:
            return None

    def grant(self, table, identifier, application, answer="yes"):
        """Writes a user's answer to a question for access where the desktop keeps such answers."""
        self._call_permission_store(
            "SetPermission",
            GLib.Variant("(sbssas)", (table, True, identifier, application, [answer])))

    def granted(self, table, identifier, application):
        """The answer that the desktop keeps."""
        try:
            answers, _ = self._call_permission_store("Lookup",
                                                     GLib.Variant("(ss)", (table, identifier)))
        except GLib.Error:
            return None
        return answers.get(application)

    def _call_permission_store(self, method, arguments):
        return call(self.bus, "org.freedesktop.impl.portal.PermissionStore",
                    "/org/freedesktop/impl/portal/PermissionStore",
                    "org.freedesktop.impl.portal.PermissionStore", method, arguments)

    def settle(self):
        """Returns when the window manager has done everything that it was asked for until now. It
        answers in turn: the first time it has moved the focus, the second it has heard of that."""
        count = int(run("xdotool", "get_num_desktops", check=True))
        for number in (count + 1, count):
            run("xdotool", "set_num_desktops", str(number), check=True)
            until(lambda: int(run("xdotool", "get_num_desktops", check=True)) == number, 10,
                  "an answer of the window manager")

    def screenshot(self, name):
        path = self.output / f"{name}.png"
        run("import", "-silent", "-window", "root", str(path), check=True)
        return path

    def end(self, process):
        """Ends one process that `spawn` started, by asking first."""
        for number, seconds in ((signal.SIGTERM, 5), (signal.SIGKILL, 5)):
            try:
                os.killpg(process.pid, number)
                process.wait(seconds)
            except (ProcessLookupError, subprocess.TimeoutExpired):
                pass
        if process in self._processes:
            self._processes.remove(process)

    def close(self):
        for process in reversed(list(self._processes)):
            self.end(process)
        shutil.rmtree(self.home, ignore_errors=True)


def run(*command, check=False, seconds=20, **options):
    """What a command prints."""
    return subprocess.run(command, capture_output=True, text=True, timeout=seconds, check=check,
                          **options).stdout


def connect(address):
    flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
             | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
    connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
    connection.set_exit_on_close(False)
    return connection


def call(connection, name, path, interface, method, arguments=None, seconds=10):
    """The results of a D-Bus call; GLib.Error if it fails, or if who is asked hangs."""
    return connection.call_sync(name, path, interface, method, arguments, None,
                                Gio.DBusCallFlags.NONE, int(seconds * 1000), None).unpack()
