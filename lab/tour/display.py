"""The windows of a program as the display has them, whatever the program says of itself, and what reaches them from the
keyboard and from the window manager. To be used when the environment names a display."""

import ctypes
import os
import subprocess


class _ClientMessage(ctypes.Structure):
    """The display's XClientMessageEvent with numbers of 32 bits, as large as any event."""

    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("is_sent", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 5), ("rest", ctypes.c_long * 12)]


CLIENT_MESSAGE = 33
# Instead of ending the process: a window may have gone meanwhile.
IGNORE_ERRORS = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)(lambda *_: 0)


def windows(process, title=None, is_hidden_too=False):
    """The windows of a process, the last one in front; those with a title that matches, where one is given."""
    command = ["xdotool", "search", "--all", "--pid", str(process)]
    command += [] if is_hidden_too else ["--onlyvisible"]
    command += [] if title is None else ["--name", title]
    return subprocess.run(command, stdout=subprocess.PIPE, check=False, text=True).stdout.split()


def bring_to_front(window):
    """Brings a window to the front, wherever it lies."""
    subprocess.run(["xdotool", "windowactivate", "--sync", window], check=True)


def press(window, *keys):
    """Brings a window to the front and presses keys there, one after the other."""
    subprocess.run(["xdotool", "windowactivate", "--sync", window, "key", "--clearmodifiers", *keys], check=True)


def type_blindly(*keys):
    """Presses keys, whatever window has the keyboard and whether or not its program answers."""
    subprocess.run(["xdotool", "key", *keys], check=True)


def disconnect(window):
    """Ends the connection of the window's program to the display."""
    subprocess.run(["xdotool", "windowkill", window], check=True)


def ask_to_close(window):
    """Tells a window's program to close it, as a window manager does that takes no notice of what the window allows."""
    library = ctypes.CDLL("libX11.so.6")
    library.XOpenDisplay.restype = ctypes.c_void_p
    library.XInternAtom.restype = ctypes.c_ulong
    library.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
    library.XSendEvent.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_long,
                                   ctypes.POINTER(_ClientMessage)]
    library.XCloseDisplay.argtypes = [ctypes.c_void_p]
    library.XSetErrorHandler(IGNORE_ERRORS)
    connection = library.XOpenDisplay(os.environ["DISPLAY"].encode())
    message = _ClientMessage(type=CLIENT_MESSAGE, window=int(window), format=32,
                             message_type=library.XInternAtom(connection, b"WM_PROTOCOLS", False))
    message.data[0] = library.XInternAtom(connection, b"WM_DELETE_WINDOW", False)
    library.XSendEvent(connection, int(window), False, 0, ctypes.byref(message))
    library.XCloseDisplay(connection)  # and waits until the display has taken everything in
