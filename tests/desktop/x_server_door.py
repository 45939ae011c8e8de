"""Another door to an X server, behind which it seems to have other extensions."""

import contextlib
import os
import socket
import threading


def _pass_on(source, target, names):
    with source, contextlib.suppress(OSError):
        while data := source.recv(1 << 16):
            for name, instead in names.items():
                data = data.replace(name.encode(), instead.encode())
            target.sendall(data)
        target.shutdown(socket.SHUT_WR)


def _serve(listener, server, names):
    with contextlib.suppress(OSError):
        while True:
            ends = listener.accept()[0], socket.socket(socket.AF_UNIX)
            ends[1].connect(server)
            for each in ((*ends, names | {"MIT-SHM": "-" * 7}), (*ends[::-1], {})):
                threading.Thread(target=_pass_on, args=each, daemon=True).start()


@contextlib.contextmanager
def door(display, names):
    """The door's display. What clients ask for by one of the names they get by the name there, which is as long."""
    server = "/tmp/.X11-unix/X" + display.removeprefix(":")
    number = 1000 + os.getpid()
    with socket.socket(socket.AF_UNIX) as listener:
        listener.bind(f"/tmp/.X11-unix/X{number}")
        listener.listen()
        threading.Thread(target=_serve, args=(listener, server, names), daemon=True).start()
        yield f":{number}"
        listener.shutdown(socket.SHUT_RDWR)
    os.remove(f"/tmp/.X11-unix/X{number}")
