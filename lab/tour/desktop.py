"""A desktop of its own for the tour: display, window manager, session bus and accessibility bus."""

import ctypes
import os
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

from waiting import wait_for

PR_SET_PDEATHSIG = 1
PR_SET_CHILD_SUBREAPER = 36

# Palette and font come from outside, through a platform theme (package qt6ct) that reads them from the user's
# configuration.
THEME_CONFIGURATION = """[Appearance]
style=Fusion
custom_palette={is_dark}
color_scheme_path=/usr/share/qt6ct/colors/darker.conf

[Fonts]
general="Sans,{points}"
fixed="Monospace,{points}"
"""
PLAIN_POINTS = 9
START_LIMIT_SECONDS = 30

_libc = ctypes.CDLL(None, use_errno=True)


def _end_with_parent():
    _libc.prctl(PR_SET_PDEATHSIG, signal.SIGTERM)


class Desktop:
    """Starts everything on entry and ends it, with everything that was started from it, on exit."""

    def __init__(self, language="en", scale=1, dark=False, points=PLAIN_POINTS, log=None, name=None):
        self._language = language
        self._scale = scale
        self._dark = dark
        self._points = points
        self._log = log or subprocess.DEVNULL
        self._name = name
        self._processes = []
        self._runtime_folder = None
        self.environment = dict(os.environ)

    def __enter__(self):
        # Whatever loses its parent becomes a child of the tour, so that nothing is left at the end.
        _libc.prctl(PR_SET_CHILD_SUBREAPER, 1)
        self._runtime_folder = tempfile.mkdtemp(prefix="vantro-tour.")
        self._prepare_environment()
        try:
            self._start_display()
            self._start_session_bus()
            self._start_window_manager()
            self.start(["/usr/libexec/at-spi-bus-launcher", "--launch-immediately", "--a11y=1"])
        except BaseException:
            self.__exit__(None, None, None)
            raise
        return self

    def __exit__(self, kind, value, trace):
        for process in reversed(self._processes):
            if process.poll() is None:
                process.terminate()
                try:
                    process.wait(10)
                except subprocess.TimeoutExpired:
                    process.kill()
                    process.wait()
            if process.stdout is not None:
                process.stdout.close()
        self._end_descendants()
        shutil.rmtree(self._runtime_folder, ignore_errors=True)

    def start(self, command, **options):
        options.setdefault("stdout", self._log)
        options.setdefault("stderr", self._log)
        process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL,
                                   preexec_fn=_end_with_parent, **options)
        self._processes.append(process)
        return process

    def screenshot(self, path):
        subprocess.run(["import", "-window", "root", path], env=self.environment, check=True)

    def _prepare_environment(self):
        environment = self.environment
        for name in ("WAYLAND_DISPLAY", "AT_SPI_BUS_ADDRESS", "DESKTOP_STARTUP_ID", "QT_STYLE_OVERRIDE", "QT_QPA_PLATFORMTHEME",
                     "XDG_CURRENT_DESKTOP", "QT_QPA_PLATFORM"):
            environment.pop(name, None)
        # A language needs no locale of its own that way. The second one chooses among the shapes of a character.
        environment.update({
            "LC_ALL": "C.UTF-8",
            "LANGUAGE": self._language,
            "FC_LANG": self._language,
            "XDG_RUNTIME_DIR": self._runtime_folder,
            "GSETTINGS_BACKEND": "memory",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
            "QT_QPA_PLATFORM": "xcb",
        })
        if self._name:
            environment["XDG_CURRENT_DESKTOP"] = self._name
        if self._has_theme():
            environment["QT_QPA_PLATFORMTHEME"] = "qt6ct"
            environment["XDG_CONFIG_HOME"] = self._runtime_folder
            self.configure_theme(Path(self._runtime_folder))
        if self._scale != 1:
            environment["QT_SCALE_FACTOR"] = str(self._scale)

    def _has_theme(self):
        return self._dark or self._points != PLAIN_POINTS

    def configure_theme(self, configuration_folder):
        """Gives programs that take their configuration from this folder the palette and the font of this desktop."""
        if not self._has_theme():
            return
        folder = configuration_folder / "qt6ct"
        folder.mkdir(parents=True, exist_ok=True)
        configuration = THEME_CONFIGURATION.format(is_dark=str(self._dark).lower(), points=self._points)
        (folder / "qt6ct.conf").write_text(configuration, encoding="ascii")

    def _start_display(self):
        size = f"{1280 * self._scale}x{1000 * self._scale}x24"
        reading, writing = os.pipe()
        self.start(["Xvfb", "-displayfd", str(writing), "-screen", "0", size, "-nolisten", "tcp", "-noreset"],
                   pass_fds=[writing])
        os.close(writing)
        with os.fdopen(reading) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.environment["DISPLAY"] = ":" + number

    def _start_window_manager(self):
        # What is shown while it starts may never appear, so it is waited for: it runs a command once it is up.
        up = Path(self._runtime_folder, "window-manager-is-up")
        manager = self.start(["openbox", "--sm-disable", "--startup", f"touch {up}"])
        wait_for("the window manager is up", lambda: up.exists() or manager.poll() is not None, START_LIMIT_SECONDS)
        if not up.exists():
            raise RuntimeError("the window manager did not start")

    def _start_session_bus(self):
        bus = self.start(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--nosyslog", "--print-address=1"],
                         stdout=subprocess.PIPE, text=True)
        address = bus.stdout.readline().strip()
        if not address:
            raise RuntimeError("the session bus did not start")
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = address

    @staticmethod
    def _children():
        with open(f"/proc/self/task/{os.getpid()}/children", encoding="ascii") as children:
            return [int(child) for child in children.read().split()]

    def _end_descendants(self):
        patience = time.monotonic() + 5
        while children := self._children():
            for child in children:
                os.kill(child, signal.SIGTERM if time.monotonic() < patience else signal.SIGKILL)
            while True:
                try:
                    if os.waitpid(-1, os.WNOHANG)[0] == 0:
                        break
                except ChildProcessError:
                    break
            time.sleep(0.02)
