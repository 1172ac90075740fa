"""The desktop's portal, without anything at first, and the user of its file dialog, who answers at
once."""

import threading
from pathlib import Path

from gi.repository import Gio, GLib

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
FILE_CHOOSER = Gio.DBusNodeInfo.new_for_xml("""<node>
  <interface name="org.freedesktop.portal.FileChooser">
    <method name="SaveFile">
      <arg type="s" direction="in"/><arg type="s" direction="in"/>
      <arg type="a{sv}" direction="in"/><arg type="o" direction="out"/>
    </method>
  </interface>
</node>""").interfaces[0]


class Portal:
    def __init__(self, bus):
        self._bus = bus
        self.choice = None  # a path; none to cancel
        self.questions = []  # each the window that asks and the options
        Gio.bus_own_name_on_connection(bus, NAME, Gio.BusNameOwnerFlags.NONE, None, None)
        threading.Thread(target=GLib.MainLoop().run, daemon=True).start()

    def show_file_dialogs(self):
        self._bus.register_object(PATH, FILE_CHOOSER, self._ask, None, None)

    def _ask(self, bus, sender, _path, _interface, _method, arguments, invocation):
        window, _, options = arguments.unpack()
        choice = self.choice  # Another one may be made once the question is known.
        self.questions.append((window, options))
        request = f"{PATH}/request/{sender[1:].replace('.', '_')}/{options['handle_token']}"
        invocation.return_value(GLib.Variant("(o)", (request,)))
        addresses = [Path(choice).as_uri()] if choice else []
        bus.emit_signal(sender, request, "org.freedesktop.portal.Request", "Response",
                        GLib.Variant("(ua{sv})", (0 if choice else 1,
                                                  {"uris": GLib.Variant("as", addresses)})))
