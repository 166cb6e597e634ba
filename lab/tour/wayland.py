"""A desktop without X: a Wayland compositor that draws into memory."""

import subprocess
import tempfile
from pathlib import Path

from desktop import START_LIMIT_SECONDS, Desktop
from waiting import wait_for

SOCKET = "wayland-tour"


class WaylandDesktop(Desktop):
    """To be used as a Desktop. It has neither keyboard nor pointer: windows are worked through AT-SPI alone."""

    def screenshot(self, path):
        with tempfile.TemporaryDirectory() as folder:
            # It chooses the name itself.
            subprocess.run(["weston-screenshooter"], cwd=folder, env=self.environment, check=True)
            Path(path).write_bytes(next(Path(folder).iterdir()).read_bytes())

    def _prepare_environment(self):
        super()._prepare_environment()
        # What a Wayland session has; the programs find out from it where they are.
        for name in ("DISPLAY", "QT_QPA_PLATFORM"):
            self.environment.pop(name, None)
        self.environment["XDG_SESSION_TYPE"] = "wayland"

    def _start_display(self):
        # The screenshots are what "--debug" is for.
        compositor = self.start(["weston", "--backend=headless-backend.so", "--use-pixman", "--debug", "--no-config",
                                 "--idle-time=0", "--width=1280", "--height=1000", f"--scale={self._scale}",
                                 f"--socket={SOCKET}"])
        socket = Path(self.environment["XDG_RUNTIME_DIR"], SOCKET)
        wait_for("the compositor is up", lambda: socket.exists() or compositor.poll() is not None, START_LIMIT_SECONDS)
        if not socket.exists():
            raise RuntimeError("the compositor did not start")
        self.environment["WAYLAND_DISPLAY"] = SOCKET

    def _start_window_manager(self):
        """The compositor is one."""
