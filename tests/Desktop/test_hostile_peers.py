import os

from gi.repository import GLib

from lorvane_desktop import editors, voices
from lorvane_desktop.lorvane import APPLICATION_ID, FINISH, GIVEN_UP, PASTED, TRANSCRIBING
from lorvane_desktop.session import call, connect, run
from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.tray import MENU, Panel

BUS = ("org.freedesktop.DBus", "/", "org.freedesktop.DBus")
PATH = "/net/lorvane/Lorvane"
APPLICATION = "org.freedesktop.Application"
LONG = "%n%s🎤\u202e\n\x1b[2J<img src='file:///etc/passwd'>" * 20000
NESTED = GLib.Variant("v", GLib.Variant("s", LONG))
for _ in range(40):
    NESTED = GLib.Variant("v", NESTED)

GARBAGE = [
    (PATH, APPLICATION, "Activate", None),
    (PATH, APPLICATION, "Activate", GLib.Variant("(s)", ("no dictionary",))),
    (PATH, APPLICATION, "Activate", GLib.Variant("(a{sv})", ({
        "activation-token": GLib.Variant("s", LONG), "desktop-startup-id": GLib.Variant("i", -1),
        LONG: NESTED},))),
    (PATH, APPLICATION, "Activate", GLib.Variant("(a{sv})", ({
        "activation-token": GLib.Variant("(asi)", (["x"] * 1000, 7))},))),
    (PATH, APPLICATION, "Open", GLib.Variant("(asa{sv})", (["file:///etc/passwd", LONG] * 50, {}))),
    (PATH, APPLICATION, "Open", GLib.Variant("(i)", (-1,))),
    (PATH, APPLICATION, "ActivateAction", GLib.Variant("(sava{sv})", (
        "record; rm -rf ~", [NESTED] * 10, {}))),
    (PATH, APPLICATION, "Quit", None),
    (PATH, "org.freedesktop.DBus.Properties", "Set", GLib.Variant("(ssv)", (
        APPLICATION, LONG, NESTED))),
    (PATH, "org.freedesktop.DBus.Introspectable", "Introspect", None),
    ("/", "org.freedesktop.DBus.Introspectable", "Introspect", None),
    (PATH + "/a" * 2000, APPLICATION, "Activate", GLib.Variant("(a{sv})", ({},))),
    ("/StatusNotifierItem", "org.kde.StatusNotifierItem", "Scroll", GLib.Variant("(is)", (
        -2**31, LONG))),
    ("/StatusNotifierItem", "org.kde.StatusNotifierItem", "ContextMenu", GLib.Variant("(s)", ("",))),
    ("/MenuBar", MENU, "Event", GLib.Variant("(isvu)", (2**31 - 1, LONG, NESTED, 0))),
    ("/MenuBar", MENU, "Event", GLib.Variant("(isvu)", (-1, "clicked", NESTED, 2**32 - 1))),
    ("/MenuBar", MENU, "GetLayout", GLib.Variant("(iias)", (-77, 2**31 - 1, [LONG] * 10))),
    ("/MenuBar", MENU, "AboutToShow", GLib.Variant("(i)", (2**31 - 1,))),
    ("/MenuBar", MENU, "GetGroupProperties", GLib.Variant("(aias)", (
        list(range(-1000, 1000)), [LONG]))),
]


class HostilePeers(DesktopTest):
    """Others on the session bus, the accessibility bus and the X server."""

    def prepare(self):
        self.panel = Panel(self.session, os.environ["DBUS_SESSION_BUS_ADDRESS"])

    def send_garbage(self):
        refused = 0
        for path, interface, method, arguments in GARBAGE:
            try:
                call(self.session.bus, APPLICATION_ID, path, interface, method, arguments)
            except GLib.Error as error:
                self.assertFalse(error.matches(GLib.quark_from_string("g-dbus-error-quark"), 4),
                                 f"no reply to {method}")
                refused += 1
        self.assertGreaterEqual(refused, 5)

    def forge_signals(self, connection):
        """What the real services tell, told by somebody else."""
        for path, interface, signal, arguments in (
                ("/org/freedesktop/impl/portal/PermissionStore",
                 "org.freedesktop.impl.portal.PermissionStore", "Changed",
                 GLib.Variant("(ssbva{sas})", ("devices", "microphone", False, NESTED,
                                               {APPLICATION_ID: ["yes"]}))),
                ("/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", None),
                (PATH, APPLICATION, "Activate", GLib.Variant("(s)", (LONG,)))):
            try:
                connection.emit_signal(None, path, interface, signal, arguments)
            except GLib.Error:
                pass  # the bus itself refuses some

    def claim_focus(self, connection):
        """Somebody who never answers says, again and again, that the focus is in it."""
        root = "/org/a11y/atspi/accessible/"
        for number in range(300):
            for path, interface, signal, body in (
                    (f"{root}{number}", "Object", "StateChanged",
                     GLib.Variant("(siiva{sv})", ("focused", 1, 0, NESTED, {}))),
                    (f"{root}{number}", "Object", "StateChanged", GLib.Variant("(s)", ("focused",))),
                    (f"{root}{number}", "Focus", "Focus", None),
                    (f"{root}root", "Window", "Activate", GLib.Variant("(v)", (NESTED,))),
                    (f"{root}root", "Object", "ChildrenChanged",
                     GLib.Variant("(siiv(so))", ("add", -1, 2**31 - 1, NESTED, ("", "/"))))):
                connection.emit_signal(None, path, f"org.a11y.atspi.Event.{interface}", signal,
                                       body)
        connection.flush_sync()

    def wait_until_read(self, connection):
        """Waits until Lorvane has read all that a connection has sent to the bus."""
        answered = 0
        for name in call(connection, *BUS, "ListNames")[0]:
            try:
                asked = GLib.Variant("(s)", (name,))
                process, = call(connection, *BUS, "GetConnectionUnixProcessID", asked)
            except GLib.Error:
                continue  # left meanwhile
            if process == self.lorvane.process.pid:
                call(connection, name, "/", "org.freedesktop.DBus.Peer", "Ping", seconds=60)
                answered += 1
        self.assertGreater(answered, 0)

    def disguise(self, window, title):
        run("xprop", "-id", window, "-f", "_NET_WM_NAME", "8u", "-set", "_NET_WM_NAME", title,
            check=True)
        run("xprop", "-id", window, "-f", "WM_CLASS", "8s", "-set", "WM_CLASS", title, check=True)
        run("xprop", "-id", window, "-f", "_NET_WM_ICON_NAME", "32c", "-set", "_NET_WM_ICON_NAME",
            "4294967295", check=True)

    def test_garbage_and_disguises_neither_end_it_nor_move_the_text(self):
        self.panel.item()
        self.send_garbage()
        self.assertEqual(self.lorvane.recordings(), [])

        target = editors.mousepad(self.session)
        other = editors.featherpad(self.session)
        title = LONG[:20000].replace("\x1b", "")
        for editor in (target, other):
            self.disguise(editor.window, title)
        target.focus()
        peers = [connect(os.environ["DBUS_SESSION_BUS_ADDRESS"]),
                 connect(self.session._accessibility_address())]

        def disturb():
            self.forge_signals(peers[0])
            self.claim_focus(peers[1])
            self.send_garbage()
            # What was sent opens Lorvane's window, as its entry in a menu does.
            run("xdotool", "windowactivate", "--sync", other.window, check=True)
            self.claim_focus(peers[1])
            self.wait_until_read(peers[1])

        self.hold_and_say(voices.prompts(self.session, "vm-nobodyavail"), disturb)
        self.lorvane.wait_for(PASTED, FINISH)
        self.assert_arrives(target, self.only_record())
        self.assertEqual(other.text(), "")
        self.assertIsNone(self.lorvane.process.poll())

    def test_while_a_flood_hides_the_focus_nothing_is_pasted_elsewhere(self):
        target = editors.mousepad(self.session)
        other = editors.featherpad(self.session)
        target.focus()
        flooding = connect(self.session._accessibility_address())

        self.hold_and_say(voices.prompts(self.session, "vm-nobodyavail"), other.focus)
        self.lorvane.wait_for(TRANSCRIBING)
        self.claim_focus(flooding)
        outcome = self.lorvane.wait_for("Saved and ", FINISH)
        # What the target says of its focus comes in time or not: the bus has the flood to carry.
        self.assertIn(outcome, (PASTED, GIVEN_UP))
        text = self.only_record()
        self.assertEqual(editors.clipboard(), text)
        self.assert_arrives(target, text if outcome == PASTED else "")
        self.assertEqual(other.text(), "")

        self.wait_until_read(flooding)
        before = target.text()
        target.focus()
        self.hold_and_say(voices.prompts(self.session, "vm-nobodyavail"), other.focus)
        self.lorvane.wait_for(PASTED, FINISH)
        self.assert_arrives(target, before + self.lorvane.history()[0]["text"])
        self.assertEqual(other.text(), "")
