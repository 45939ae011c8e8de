"""A desktop of the test's own: X server, window manager, session bus. What is started here ends by its process id; what
it leaves behind becomes a child of the test, a subreaper, and ends with it. Nothing waits for a fixed time."""

import contextlib
import ctypes
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time

from Xlib import X, XK, display
from Xlib.error import BadDrawable, BadWindow
from Xlib.ext import xtest

COMPOSITED = os.environ.get("NUBBLE_COMPOSITOR") == "picom"
MANAGER = os.environ.get("NUBBLE_WINDOW_MANAGER") or "openbox"
PATIENCE = 20.0  # seconds until a condition that does not come true is a failure
SCREEN = (1280, 800)
BACKDROP = (48, 96, 160)

ctypes.CDLL(None).prctl(36, 1)  # PR_SET_CHILD_SUBREAPER


def eventually(condition, what, pause=0.02):
    """The first true value that `condition` returns."""
    deadline = time.monotonic() + PATIENCE
    while not (value := condition()):
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {PATIENCE:g} s: {what() if callable(what) else what}")
        time.sleep(pause)
    return value


def descendants(pid):
    parents = {}
    for entry in pathlib.Path("/proc").glob("[0-9]*/stat"):
        with contextlib.suppress(OSError):
            parents[int(entry.parent.name)] = int(entry.read_text().rpartition(")")[2].split()[1])
    found = [pid]
    for each in found:
        found += [child for child, parent in parents.items() if parent == each]
    return found[1:]


def end(process):
    process.terminate()
    return process.wait(PATIENCE)


def end_descendants():
    def none_left():
        for pid in descendants(os.getpid()):
            with contextlib.suppress(ProcessLookupError, ChildProcessError):
                os.kill(pid, signal.SIGKILL)
                os.waitpid(pid, os.WNOHANG)
        return not descendants(os.getpid())

    eventually(none_left, "every started process has ended")


class Window:
    """A client window that notes the buttons pressed on it."""

    def __init__(self, desktop, x, y, width, height, *, managed):
        self.display = desktop.display
        screen = self.display.screen()
        red, green, blue = BACKDROP
        self.window = screen.root.create_window(
            x, y, width, height, 0, screen.root_depth, background_pixel=red << 16 | green << 8 | blue,
            override_redirect=not managed, event_mask=X.ButtonPressMask)
        self.window.map()
        self.display.sync()

    def clicks(self):
        """Where it has been clicked since the last call, on the screen."""
        self.display.sync()
        events = [self.display.next_event() for _ in range(self.display.pending_events())]
        return [
            (event.root_x, event.root_y) for event in events
            if event.type == X.ButtonPress and event.window == self.window]

    def close(self):
        self.window.destroy()
        self.display.sync()


class Desktop:
    """Xvfb with a window manager, with picom if the tests run with a compositor, and a session bus."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="nubble-desktop-"))
        self.env = {
            "PATH": os.environ["PATH"], "LANG": "C.UTF-8", "HOME": str(self.folder),
            "XDG_RUNTIME_DIR": str(self.folder), "NO_AT_BRIDGE": "1", "QT_QPA_PLATFORM": "xcb"}
        self.env |= {key: value for key, value in os.environ.items() if key.endswith("SAN_OPTIONS")}
        self.services = []
        self.env["DISPLAY"] = ":" + self.announced(
            "Xvfb", "-displayfd", "FD", "-screen", "0", "%dx%dx24" % SCREEN, "-dpi", "96", "-noreset")
        self.env["DBUS_SESSION_BUS_ADDRESS"] = self.announced(
            "dbus-daemon", "--session", "--nofork", "--print-address=FD")
        self.display = display.Display(self.env["DISPLAY"])
        self.root = self.display.screen().root
        self._start_manager()
        if COMPOSITED:
            self.services.append(self.start_compositor())
        self.backdrop = Window(self, 0, 0, *SCREEN, managed=False)
        self.backdrop.window.configure(stack_mode=X.Below)  # of trays too
        if COMPOSITED:
            self._until_composited()

    def close(self):
        self.display.close()
        # All of them before any is waited for: openbox may overlook the signal, and then ends with the X server.
        for service in reversed(self.services):
            service.terminate()
        for service in self.services:
            end(service)
        end_descendants()
        shutil.rmtree(self.folder, ignore_errors=True)

    def start(self, *command, **options):
        quiet = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        return subprocess.Popen(command, env=self.env, **(quiet | options))

    def _start_manager(self):
        config = self.folder / "i3.conf"
        config.write_text("# i3 config file (v4)\n")
        options = {"openbox": ["--sm-disable"], "i3": ["-c", config], "mutter": ["--x11"]}
        self.services.append(self.start(MANAGER, *options.get(MANAGER, [])))
        eventually(lambda: self.property("_NET_SUPPORTING_WM_CHECK"), "the window manager runs")
        eventually(lambda: MANAGER != "openbox" or self._openbox_answers(), "openbox runs")

    def _openbox_answers(self):
        """While it starts it may mislay a request; once it has answered one it does not."""
        self.start("xdotool", "set_num_desktops", "3").wait(PATIENCE)
        return self.property("_NET_NUMBER_OF_DESKTOPS") == [3]

    def run(self, *command):
        subprocess.run(command, env=self.env, check=True, timeout=PATIENCE, stdout=subprocess.DEVNULL)

    def start_compositor(self):
        compositor = self.start("picom", "--config", "/dev/null", "--backend", "xrender")
        manager = self.display.intern_atom("_NET_WM_CM_S0")
        eventually(lambda: self.display.get_selection_owner(manager) != X.NONE, "picom runs")
        return compositor

    def _until_composited(self):
        """Until what is transparent looks so, which it does some time after the compositor has taken the selection."""
        visual = next(
            visual.visual_id for depth in self.display.screen().allowed_depths if depth.depth == 32
            for visual in depth.visuals if visual.visual_class == X.TrueColor)
        probe = self.root.create_window(
            0, 0, 9, 9, 0, 32, visual=visual, colormap=self.root.create_colormap(visual, X.AllocNone),
            background_pixel=0, border_pixel=0, override_redirect=True)
        probe.map()
        self.display.sync()
        eventually(lambda: self.pixel(4, 4) == BACKDROP, "the backdrop is seen through a transparent window")
        probe.destroy()

    def announced(self, *command):
        """Starts a program that writes one line to the descriptor that it is given for FD."""
        reading, writing = os.pipe()
        words = [word.replace("FD", str(writing)) for word in command]
        self.services.append(self.start(*words, pass_fds=[writing]))
        os.close(writing)
        with os.fdopen(reading) as announcement:
            return announcement.readline().strip()

    def pixels(self, x, y, width, height):
        raw = self.root.get_image(x, y, width, height, X.ZPixmap, 0xFFFFFFFF).data
        return [
            [(raw[at + 2], raw[at + 1], raw[at]) for at in range(row * width * 4, (row + 1) * width * 4, 4)]
            for row in range(height)]

    def pixel(self, x, y):
        return self.pixels(int(x), int(y), 1, 1)[0][0]

    def property(self, name):
        answer = self.root.get_full_property(self.display.intern_atom(name), X.AnyPropertyType)
        return list(answer.value) if answer else []

    def until_active(self, window):
        eventually(lambda: self.property("_NET_ACTIVE_WINDOW")[:1] == [window], "the window is the active one")

    def focused(self):
        """What has the keyboard, a window's number or less than two."""
        focus = self.display.get_input_focus().focus
        return getattr(focus, "id", focus)

    def nubble_windows(self, parent=None):
        """The program's windows that are shown, at the top or embedded in others, as (window, parent, geometry)."""
        parent = parent or self.root
        found = []
        with contextlib.suppress(BadWindow):  # it has just gone
            for window in parent.query_tree().children:
                with contextlib.suppress(BadWindow, BadDrawable):
                    shown = window.get_attributes().map_state == X.IsViewable
                    if shown and (window.get_wm_class() or [""])[0] == "nubble":
                        found.append((window, parent, window.get_geometry()))
                    found += self.nubble_windows(window)
        return found

    def menus(self):
        """The rectangles of open menus. The panel's window is there always, and larger than any menu."""
        own = [geometry for _, parent, geometry in self.nubble_windows() if parent == self.root]
        return sorted(own, key=lambda geometry: geometry.height)[:-1]

    def _is_keyboard_held(self):
        """Whether some client has grabbed it. While this is tried nobody else can be served."""
        self.display.grab_server()
        answer = self.root.grab_keyboard(False, X.GrabModeAsync, X.GrabModeAsync, X.CurrentTime)
        self.display.ungrab_keyboard(X.CurrentTime)
        self.display.ungrab_server()
        self.display.sync()
        return answer == X.AlreadyGrabbed

    def until_menu(self):
        """The rectangle of the menu, once keys reach it: it is on the screen before it holds the keyboard."""
        eventually(lambda: self.menus() and self._is_keyboard_held(), "the menu is open")
        return self.menus()[0]

    def until_no_menu(self):
        eventually(lambda: not self.menus(), "the menu is closed")

    def _fake(self, event, detail=0, **position):
        xtest.fake_input(self.display, event, detail, **position)
        self.display.sync()

    def move_pointer(self, x, y):
        self._fake(X.MotionNotify, x=round(x), y=round(y))

    def click(self, x, y, button=1):
        self.drag((x, y), (x, y), button, steps=0)

    @contextlib.contextmanager
    def button_held(self, start, button=1):
        self.move_pointer(*start)
        self._fake(X.ButtonPress, button)
        yield
        self._fake(X.ButtonRelease, button)

    def drag(self, start, to, button=1, steps=10):
        with self.button_held(start, button):
            for step in range(1, steps + 1):
                self.move_pointer(*(a + (b - a) * step / steps for a, b in zip(start, to)))

    def key(self, *names):
        """The last key, while the ones before it are held."""
        codes = [self.display.keysym_to_keycode(XK.string_to_keysym(name)) for name in names]
        for event, order in ((X.KeyPress, codes), (X.KeyRelease, reversed(codes))):
            for code in order:
                self._fake(event, code)
