"""The accessibility bus as a screen reader sees it. Every question goes to the application itself,
so that no answer is older than the question."""

import re
from pathlib import Path

from gi.repository import Gio, GLib

from .session import call

CHECKED, FOCUSED, SENSITIVE, SHOWING = 4, 12, 24, 25  # numbers of AtspiStateType
_TEXT = "org.a11y.atspi.Text"
_COMPONENT = "org.a11y.atspi.Component"
_ACTION = "org.a11y.atspi.Action"
_ACCESSIBLE = "org.a11y.atspi.Accessible"
_PROPERTIES = "org.freedesktop.DBus.Properties"


def application(session, process):
    """The root element of a process, or of one that it started; None while it isn't on the bus."""
    bus = session.accessibility_bus
    family = set(with_descendants(process.pid))
    root = Element(bus, "org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
    found = None
    for child in root.children():
        try:
            pid, = call(bus, "org.freedesktop.DBus", "/", "org.freedesktop.DBus",
                        "GetConnectionUnixProcessID", GLib.Variant("(s)", (child.owner,)))
            if pid not in family:
                continue
            child.pid = pid
            found = child
            # Under GTK's platform theme a Qt program is there twice, once without any window.
            if child.children():
                break
        except GLib.Error:
            continue
    return found


class Focus:
    """The element that was last told to have got the focus, as a screen reader follows it."""

    def __init__(self, session):
        self._element = None
        bus = session.accessibility_bus
        call(bus, "org.a11y.atspi.Registry", "/org/a11y/atspi/registry", "org.a11y.atspi.Registry",
             "RegisterEvent", GLib.Variant("(sass)", ("object:state-changed:focused", [], "")))

        def changed(_bus, owner, path, _interface, _signal, arguments):
            if arguments[1]:
                self._element = Element(bus, owner, path)

        bus.signal_subscribe(None, "org.a11y.atspi.Event.Object", "StateChanged", None, "focused",
                             Gio.DBusSignalFlags.NONE, changed)

    def name(self):
        while GLib.MainContext.default().iteration(False):
            pass
        try:
            return self._element.name() if self._element else ""
        except GLib.Error:
            return ""


def with_descendants(pid):
    yield pid
    try:
        threads = list(Path(f"/proc/{pid}/task").iterdir())
    except OSError:
        return
    for thread in threads:
        try:
            children = (thread / "children").read_text().split()
        except OSError:
            continue
        for child in children:
            yield from with_descendants(int(child))


class Element:
    """One element of an application. It may be gone by the next question: GLib.Error then."""

    def __init__(self, bus, owner, path):
        self.bus, self.owner, self.path = bus, owner, path

    def __eq__(self, other):
        return (isinstance(other, Element)
                and (self.owner, self.path) == (other.owner, other.path))

    def __repr__(self):
        return f"{self.role()} “{self.name()}”"

    def _call(self, interface, method, arguments=None):
        return call(self.bus, self.owner, self.path, interface, method, arguments)

    def children(self):
        found, = self._call(_ACCESSIBLE, "GetChildren")
        return [Element(self.bus, owner, path) for owner, path in found]

    def name(self):
        return self._call(_PROPERTIES, "Get", GLib.Variant("(ss)", (_ACCESSIBLE, "Name")))[0]

    def description(self):
        return self._call(_PROPERTIES, "Get",
                          GLib.Variant("(ss)", (_ACCESSIBLE, "Description")))[0]

    def role(self):
        return self._call(_ACCESSIBLE, "GetRoleName")[0]

    def has_state(self, state):
        words, = self._call(_ACCESSIBLE, "GetState")
        return bool(words[state // 32] & 1 << state % 32)

    def text(self):
        return self._call(_TEXT, "GetText", GLib.Variant("(ii)", (0, -1)))[0]

    def grab_focus(self):
        return self._call(_COMPONENT, "GrabFocus")[0]

    def extents(self):
        """Its left and upper edge, width and height, on the screen."""
        on_screen = 0
        found, = self._call(_COMPONENT, "GetExtents", GLib.Variant("(u)", (on_screen,)))
        return found

    def middle(self):
        """The point in its middle, on the screen."""
        x, y, width, height = self.extents()
        return x + width // 2, y + height // 2

    def press(self):
        """The first action of the element, as a screen reader's user would choose it. To take the
        focus is none."""
        actions, = self._call(_ACTION, "GetActions")
        names = [name for name, *_ in actions]
        index = next(i for i, name in enumerate(names) if name != "SetFocus")
        done, = self._call(_ACTION, "DoAction", GLib.Variant("(i)", (index,)))
        if not done:
            raise RuntimeError(f"{self} refused to be pressed")

    def focus(self):
        """Gives the element the keyboard focus within its window."""
        self._call("org.a11y.atspi.Component", "GrabFocus")

    def walk(self):
        """The element and everything below it. What goes away meanwhile is passed over."""
        yield self
        try:
            children = self.children()
        except GLib.Error:
            return
        for child in children:
            yield from child.walk()

    def find(self, name=None, role=None, states=()):
        """The first element with that name, a role that the expression matches, and those
        states."""
        for element in self.walk():
            try:
                if ((name is None or element.name() == name)
                        and (role is None or re.fullmatch(role, element.role()))
                        and all(element.has_state(state) for state in states)):
                    return element
            except GLib.Error:
                continue
        return None
