import subprocess

from gi.repository import Gio, GLib

from lorvane_desktop.testcase import DesktopTest
from lorvane_desktop.waiting import until

ACCENT, STRONGER_ACCENT = (212, 74, 33), (143, 36, 8)
SETTINGS = Gio.DBusNodeInfo.new_for_xml("""<node>
  <interface name="org.freedesktop.portal.Settings">
    <method name="Read">
      <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/>
    </method>
    <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
  </interface>
</node>""").interfaces[0]
PATH = "/org/freedesktop/portal/desktop"
APPEARANCE = "org.freedesktop.appearance"


class Contrast(DesktopTest):
    def prepare(self):
        """A settings portal whose user has asked for more contrast."""
        def read(_bus, _sender, _path, _interface, _method, arguments, invocation):
            if arguments.unpack() == (APPEARANCE, "contrast"):
                inner = GLib.Variant("v", GLib.Variant("u", 1))
                invocation.return_value(GLib.Variant("(v)", (inner,)))
            else:
                invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "Unknown")

        bus = self.session.bus
        bus.register_object(PATH, SETTINGS, read, None, None)
        Gio.bus_own_name_on_connection(bus, "org.freedesktop.portal.Desktop",
                                       Gio.BusNameOwnerFlags.NONE, None, None)

    def colour(self):
        """Of the record button, beside its icon."""
        while GLib.MainContext.default().iteration(False):
            pass
        left, top, _, height = self.lorvane.window.find("Start dictation").extents()
        pixel = subprocess.run(["import", "-silent", "-window", "root", "-crop",
                                f"1x1+{left + 10}+{top + height // 2}", "-depth", "8", "rgb:-"],
                               capture_output=True, check=True).stdout
        return tuple(pixel)

    def test_a_wish_for_more_contrast_is_followed_at_the_start_and_later(self):
        until(lambda: self.colour() == STRONGER_ACCENT, 5, "the stronger colours")
        self.session.bus.emit_signal(
            None, PATH, SETTINGS.name, "SettingChanged",
            GLib.Variant("(ssv)", (APPEARANCE, "contrast", GLib.Variant("u", 0))))
        until(lambda: self.colour() == ACCENT, 5, "the design's colours")
