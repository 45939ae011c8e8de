"""A desktop that shows status items from the session bus: the watcher, its one host, and the menus as it reads them."""

import threading

from gi.repository import Gio, GLib

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"

INTERFACE = Gio.DBusNodeInfo.new_for_xml(f"""
<node><interface name="{WATCHER}">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
  <signal name="StatusNotifierHostRegistered"/>
</interface></node>""").interfaces[0]


class StatusItemHost:
    """Lives on a connection of its own, served by a thread; everything else is called from the test's."""

    def __init__(self, address):
        self.items = []  # bus names, in the order of their registration
        ready = threading.Event()
        self._context = GLib.MainContext()
        self._loop = GLib.MainLoop(self._context)
        self._thread = threading.Thread(target=self._serve, args=(address, ready), daemon=True)
        self._thread.start()
        assert ready.wait(10)

    def _serve(self, address, ready):
        self._context.push_thread_default()
        flags = (
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
        self.bus = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        self.bus.register_object("/StatusNotifierWatcher", INTERFACE, self._on_call, self._on_get, None)
        self._bus_call("RequestName", GLib.Variant("(su)", (WATCHER, 0)))
        ready.set()
        self._loop.run()

    def _bus_call(self, method, arguments):
        self.bus.call_sync(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, arguments, None,
            Gio.DBusCallFlags.NONE, 5000, None)

    def _on_call(self, _bus, sender, _path, _interface, method, _arguments, invocation):
        if method == "RegisterStatusNotifierItem":
            self.items.append(sender)
        invocation.return_value(None)

    def _on_get(self, _bus, _sender, _path, _interface, name):
        return {
            "RegisteredStatusNotifierItems": GLib.Variant("as", self.items),
            "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
            "ProtocolVersion": GLib.Variant("i", 0)}[name]

    def close(self):
        self._loop.quit()
        self._thread.join()
        self.bus.close_sync(None)

    def _call(self, path, interface, method, arguments):
        return self.bus.call_sync(
            self.items[-1], path, interface, method, arguments, None, Gio.DBusCallFlags.NONE, 5000, None).unpack()

    # The item

    def property(self, name):
        return self._call(
            "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get", GLib.Variant("(ss)", (ITEM, name)))[0]

    def tool_tip(self):
        return self.property("ToolTip")[2]

    def icon(self, size):
        """The alpha of each pixel, row by row."""
        for width, height, data in self.property("IconPixmap"):
            if (width, height) == (size, size):
                return [[data[4 * (row * size + column)] for column in range(size)] for row in range(size)]
        return None

    def click(self):
        self._call("/StatusNotifierItem", ITEM, "Activate", GLib.Variant("(ii)", (0, 0)))

    def ask_for_menu(self):
        """As a desktop does that draws no menus."""
        self._call("/StatusNotifierItem", ITEM, "ContextMenu", GLib.Variant("(ii)", (0, 0)))

    # Its menu

    def read_menu(self):
        """The entries as (id, what the desktop shows, entries below)."""
        _, root = self._call(
            self.property("Menu"), MENU, "GetLayout", GLib.Variant("(iias)", (0, -1, [])))
        return root[2]

    def open_menu(self):
        path = self.property("Menu")
        self._call(path, MENU, "AboutToShow", GLib.Variant("(i)", (0,)))
        self._send_event(path, 0, "opened")
        return self.read_menu()

    def choose(self, identifier, times=1):
        path = self.property("Menu")
        for _ in range(times):
            self._send_event(path, identifier, "clicked")
        self._send_event(path, 0, "closed")

    def _send_event(self, path, identifier, event):
        """Without waiting for the answer: the program may be ending."""
        self.bus.call(
            self.items[-1], path, MENU, "Event",
            GLib.Variant("(isvu)", (identifier, event, GLib.Variant("s", ""), 0)), None, Gio.DBusCallFlags.NONE,
            5000, None, None)


def shown(entry):
    """One entry in a line: "[x]" is checked, "[ ]" could be, "(…)" is disabled, "-" a separator, keys behind it."""
    _, properties, below = entry
    if properties.get("type") == "separator":
        return "-"
    text = properties["label"]
    if properties.get("toggle-type"):
        text = ("[x] " if properties.get("toggle-state") == 1 else "[ ] ") + text
    for keys in properties.get("shortcut", []):
        text += " " + "+".join(keys)
    if below:
        text += " {" + ", ".join(map(shown, below)) + "}"
    return text if properties.get("enabled", True) else f"({text})"


def find(entries, label):
    """The id of the entry of that label, wherever it is."""
    for identifier, properties, below in entries:
        if properties.get("label") == label:
            return identifier
        found = find(below, label)
        if found is not None:
            return found
    return None
