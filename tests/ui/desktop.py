"""A display of its own (Xvfb), and hands for it: keys, clicks and closing of windows."""

import ctypes
import os
import shutil
import subprocess
import time

MISSING = [tool for tool in ("Xvfb", "xdotool") if not shutil.which(tool)]


def wait_for(what, condition, seconds=30):
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        value = condition()
        if value:
            return value
        time.sleep(0.05)
    raise AssertionError(f"waited {seconds} s for {what}")


class ClientMessage(ctypes.Structure):
    """XClientMessageEvent, padded to the size of an XEvent."""

    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 5), ("padding", ctypes.c_long * 12)]


class Desktop:
    """No window manager runs: windows have no frames, and the test gives the focus."""

    def __init__(self, size="1400x1200"):
        read, write = os.pipe()
        # Without -noreset it begins anew when its last client goes, and drops who is just coming.
        self._server = subprocess.Popen(["Xvfb", "-noreset", "-displayfd", str(write), "-screen", "0", size + "x24"],
                                        pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as pipe:
            self.display = ":" + pipe.readline().strip()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._server.terminate()
        self._server.wait()

    def xdotool(self, *arguments):
        environment = {**os.environ, "DISPLAY": self.display}
        run = subprocess.run(["xdotool", *map(str, arguments)], env=environment, capture_output=True, text=True)
        return run.stdout.split()

    def find(self, name):
        """Identifier of the visible window whose title begins so, or None."""
        return next(iter(self.xdotool("search", "--onlyvisible", "--name", "^" + name)), None)

    def window(self, name):
        found = wait_for(f"the window {name}", lambda: self.find(name))
        time.sleep(0.3)
        self.xdotool("windowfocus", "--sync", found)
        return found

    def key(self, window, *keys):
        self.xdotool("windowfocus", "--sync", window)
        self.xdotool("key", "--clearmodifiers", *keys)

    def type(self, window, text):
        self.xdotool("windowfocus", "--sync", window)
        self.xdotool("type", "--delay", 8, text)

    def click(self, window, x, y):
        self.xdotool("mousemove", "--sync", "--window", window, x, y, "click", 1)

    def picture(self, path, window="root"):
        environment = {**os.environ, "DISPLAY": self.display}
        subprocess.run(["import", "-window", window, path], env=environment, check=True)

    def close(self, window):
        """Asks the window to close, as the close box of a frame does."""
        xlib = ctypes.CDLL("libX11.so.6")
        xlib.XOpenDisplay.restype = ctypes.c_void_p
        xlib.XInternAtom.restype = ctypes.c_ulong
        display = ctypes.c_void_p(xlib.XOpenDisplay(self.display.encode()))
        protocols, delete = (xlib.XInternAtom(display, name, 0) for name in (b"WM_PROTOCOLS", b"WM_DELETE_WINDOW"))
        event = ClientMessage(type=33, window=int(window), message_type=protocols, format=32)
        event.data[0] = delete
        xlib.XSendEvent(display, ctypes.c_ulong(int(window)), 0, 0, ctypes.byref(event))
        xlib.XCloseDisplay(display)
