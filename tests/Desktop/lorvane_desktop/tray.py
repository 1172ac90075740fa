"""The desktop's panel, as far as a tray item needs one: the watcher with which it registers, and
its menu as the panel reads and clicks it over the bus."""

import threading

from gi.repository import Gio, GLib

from .session import call, connect
from .waiting import until

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"
PROPERTIES = "org.freedesktop.DBus.Properties"

INTERFACE = f"""<node><interface name="{WATCHER}">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
  <signal name="StatusNotifierItemUnregistered"><arg type="s"/></signal>
  <signal name="StatusNotifierHostRegistered"/>
</interface></node>"""


class Panel:
    """Has to be there before the program starts, which else shows its item in another way."""

    def __init__(self, session, address):
        self._bus = session.bus
        self._items = []
        ready = threading.Event()
        threading.Thread(target=self._run, args=(address, ready), daemon=True).start()
        if not ready.wait(10):
            raise TimeoutError("the panel did not get ready")

    def _run(self, address, ready):
        context = GLib.MainContext()
        context.push_thread_default()
        connection = connect(address)
        interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
        connection.register_object("/StatusNotifierWatcher", interface, self._called,
                                   self._property, None)
        call(connection, "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "RequestName",
             GLib.Variant("(su)", (WATCHER, 0)))
        ready.set()
        GLib.MainLoop(context).run()

    def _called(self, _connection, sender, _path, _interface, method, arguments, invocation):
        if method == "RegisterStatusNotifierItem":
            name = arguments.unpack()[0]
            self._items.append(sender if name.startswith("/") else name)
        invocation.return_value(None)

    def _property(self, _connection, _sender, _path, _interface, name):
        return {"RegisteredStatusNotifierItems": GLib.Variant("as", self._items),
                "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
                "ProtocolVersion": GLib.Variant("i", 0)}[name]

    def item(self):
        """The newest item, once one has registered."""
        until(lambda: self._items, 10, "the tray item")
        return Item(self._bus, self._items[-1])


class Item:
    """A program's item in the panel."""

    def __init__(self, bus, owner):
        self._bus, self._owner = bus, owner

    def property(self, name):
        return call(self._bus, self._owner, "/StatusNotifierItem", PROPERTIES, "Get",
                    GLib.Variant("(ss)", (ITEM, name)))[0]

    def _menu_call(self, method, arguments):
        return call(self._bus, self._owner, self.property("Menu"), MENU, method, arguments)

    def _entries(self):
        """The number and the properties of each visible entry."""
        _, (_, _, entries) = self._menu_call("GetLayout", GLib.Variant("(iias)", (0, -1, [])))
        return [(number, properties) for number, properties, _ in entries
                if properties.get("visible", True)]

    def menu(self):
        """The visible entries in order: their texts, "-" for a divider, in brackets when they can't
        be chosen."""
        texts = []
        for _, properties in self._entries():
            text = properties.get("label", "").replace("_", "")
            if properties.get("type") == "separator":
                text = "-"
            elif not properties.get("enabled", True):
                text = f"[{text}]"
            texts.append(text)
        return texts

    def choose(self, text):
        """Clicks an entry."""
        for number, properties in self._entries():
            if properties.get("label", "").replace("_", "") == text:
                self._menu_call("Event", GLib.Variant("(isvu)", (number, "clicked",
                                                                GLib.Variant("i", 0), 0)))
                return
        raise LookupError(f"the menu has no “{text}”: {self.menu()}")
