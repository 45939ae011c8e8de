"""What a screen reader meets: the program's controls by role and name."""

import os

from desktop import eventually


class Accessible:
    """The accessible tree of the programs on a desktop. One per test process, for the library connects once."""

    def __init__(self, desktop):
        os.environ.update({key: desktop.env[key] for key in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR")})
        import pyatspi  # reads the environment
        from gi.repository import GLib

        self._atspi = pyatspi
        self._gone = GLib.Error

    def _walk(self, parent):
        parent.clearCache()  # which only the library's own event loop would keep up to date
        for child in parent:
            if child is not None:
                child.clearCache()
                yield child
                yield from self._walk(child)

    def find_all(self, role, starts_with=""):
        """The controls on the screen; none while they change."""
        found = []
        try:
            for each in self._walk(self._atspi.Registry.getDesktop(0)):
                showing = each.getState().contains(self._atspi.STATE_SHOWING)
                if showing and each.getRoleName() == role and each.name.startswith(starts_with):
                    found.append(each)
        except self._gone:
            return []
        return found

    def find(self, role, starts_with):
        return eventually(
            lambda: self.find_all(role, starts_with), f"a {role} named {starts_with!r} is on the screen")[0]

    def center(self, control):
        box = control.queryComponent().getExtents(self._atspi.DESKTOP_COORDS)
        return (box.x + box.width / 2, box.y + box.height / 2)

    def focused(self, role):
        """The name of the control that has the keyboard, if it is one of that role."""
        controls = (each for each in self.find_all(role) if each.getState().contains(self._atspi.STATE_FOCUSED))
        return next((each.name for each in controls), "")
