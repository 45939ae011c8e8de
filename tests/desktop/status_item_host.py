"""A desktop that shows status items from the session bus: the watcher, its one host, and the menus as it reads them. It
shows notices, too."""

import threading

from gi.repository import Gio, GLib

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"
MESSAGES = "org.freedesktop.Notifications"

INTERFACES = Gio.DBusNodeInfo.new_for_xml(f"""
<node><interface name="{WATCHER}">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
</interface><interface name="{MESSAGES}">
  <method name="GetCapabilities"><arg type="as" direction="out"/></method>
  <method name="CloseNotification"><arg type="u" direction="in"/></method>
  <method name="Notify">
    {"".join(f'<arg type="{each}" direction="in"/>' for each in ("s", "u", "s", "s", "s", "as", "a{sv}", "i"))}
    <arg type="u" direction="out"/></method>
</interface></node>""").interfaces


def connect(address):
    flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
    return Gio.DBusConnection.new_for_address_sync(address, flags, None, None)


class StatusItemHost:
    """Lives on a connection of its own, served by a thread; everything else is called from the test's."""

    def __init__(self, address):
        self.items = []  # bus names, in the order of their registration
        self.messages = {}  # title and text of those that are up, by their numbers
        self.calls = 0  # for these
        ready = threading.Event()
        self._context = GLib.MainContext()
        self._loop = GLib.MainLoop(self._context)
        self._thread = threading.Thread(target=self._serve, args=(address, ready), daemon=True)
        self._thread.start()
        assert ready.wait(10)

    def _serve(self, address, ready):
        self._context.push_thread_default()
        self.bus = connect(address)
        for interface in INTERFACES:
            path = "/StatusNotifierWatcher" if interface.name == WATCHER else "/org/freedesktop/Notifications"
            self.bus.register_object(path, interface, self._on_call, self._on_get, None)
            self._call(
                "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName", "(su)",
                interface.name, 0)
        ready.set()
        self._loop.run()

    def _on_call(self, _bus, sender, _path, interface, method, arguments, invocation):
        self.calls += interface == MESSAGES
        if method == "Notify":
            number = arguments.unpack()[1] or self.calls
            self.messages[number] = arguments.unpack()[3:5]
            invocation.return_value(GLib.Variant("(u)", (number,)))
        elif method == "GetCapabilities":
            invocation.return_value(GLib.Variant("(as)", (["actions"],)))
        elif method == "CloseNotification":
            self.messages.pop(arguments.unpack()[0], None)
            invocation.return_value(None)
        else:
            self.items.append(sender)
            invocation.return_value(None)

    def _on_get(self, _bus, _sender, _path, _interface, name):
        return {
            "RegisteredStatusNotifierItems": GLib.Variant("as", self.items),
            "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
            "ProtocolVersion": GLib.Variant("i", 0)}[name]

    def _call(self, service, path, interface, method, signature, *arguments):
        return self.bus.call_sync(
            service, path, interface, method, GLib.Variant(signature, arguments), None, Gio.DBusCallFlags.NONE, 5000,
            None).unpack()

    def _call_item(self, *arguments):
        return self._call(self.items[-1], "/StatusNotifierItem", *arguments)

    def _call_menu(self, *arguments):
        return self._call(self.items[-1], self.property("Menu"), MENU, *arguments)

    def close(self):
        self._loop.quit()
        self._thread.join()
        self.bus.close_sync(None)

    def property(self, name):
        return self._call_item("org.freedesktop.DBus.Properties", "Get", "(ss)", ITEM, name)[0]

    def tool_tip(self):
        return self.property("ToolTip")[2]

    def opacities(self):
        return {width: max(data[::4]) for width, _, data in self.property("IconPixmap")}

    def click(self, method="Activate"):
        """With ContextMenu as a desktop asks for the menu that draws none."""
        self._call_item(ITEM, method, "(ii)", 0, 0)

    def read_menu(self):
        """The entries as (id, what the desktop shows, entries below)."""
        return self._call_menu("GetLayout", "(iias)", 0, -1, [])[1][2]

    def open_menu(self):
        self._call_menu("AboutToShow", "(i)", 0)
        self._send_event(self.property("Menu"), 0, "opened")
        return self.read_menu()

    def click_message(self):
        """The newest that is up."""
        arguments = GLib.Variant("(us)", (max(self.messages.copy()), "default"))
        self.bus.emit_signal(None, "/org/freedesktop/Notifications", MESSAGES, "ActionInvoked", arguments)

    def choose(self, menu, label, times=1):
        path, identifier = self.property("Menu"), find(menu, label)[0]
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
    """One entry in a line: "[x]" is checked, "[ ]" could be, "(…)" is disabled, keys behind it."""
    _, properties, below = entry
    mark = {0: "[ ] ", 1: "[x] "}[properties.get("toggle-state", 0)] if properties.get("toggle-type") else ""
    keys = "".join(" " + "+".join(each) for each in properties.get("shortcut", []))
    text = mark + properties.get("label", "-") + keys + (f" {{{', '.join(map(shown, below))}}}" if below else "")
    return text if properties.get("enabled", True) else f"({text})"


def find(entries, label):
    """The entry whose label begins so, wherever it is."""
    for entry in entries:
        if entry[1].get("label", "").startswith(label):
            return entry
        if found := find(entry[2], label):
            return found
    return None
