"""A Debian tree of its own to install packages into."""

import subprocess
import sys
from pathlib import Path

for folder in ("tour", "machine"):
    sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "lab" / folder))

from trees import packed_tree, run, unpack  # noqa: E402
from waiting import wait_for  # noqa: E402

PATIENCE_SECONDS = 60


class DebianTree:
    """To be used in a mount and process namespace of its own, by root: what is mounted and started ends with that."""

    def __init__(self, folder, packages):
        """Unpacks a tree with these packages below the folder. The packed tree is kept there for the next time."""
        self.root = folder / "tree"
        self._log = folder / "boot.log"
        self._enter = ["chroot", self.root]
        self._container = None
        unpack(packed_tree(folder, packages), self.root)

    def start_bus(self):
        """Starts the system's bus and nothing else; the bus itself starts services."""
        run("mount", "--bind", self.root, self.root)
        run("mount", "-t", "proc", "proc", self.root / "proc")
        run("mount", "-t", "tmpfs", "tmpfs", self.root / "run")
        for name in ("dev", "sys"):
            run("mount", "--rbind", f"/{name}", self.root / name)
        self.path("/run/dbus").mkdir(exist_ok=True)
        self.must("dbus-daemon", "--system", "--fork")

    def boot(self):
        """Starts the tree as a container with systemd as its first process."""
        with open(self._log, "w", encoding="utf-8") as log:
            self._container = subprocess.Popen(
                ["systemd-nspawn", "--register=no", "--keep-unit", "--directory", self.root, "--boot"],
                stdin=subprocess.DEVNULL, stdout=log, stderr=subprocess.STDOUT)
        children = Path(f"/proc/{self._container.pid}/task/{self._container.pid}/children")
        first = wait_for(f"the container starts ({self._log})", lambda: children.read_text(encoding="ascii").split(),
                         PATIENCE_SECONDS)[0]
        self._enter = ["nsenter", f"--target={first}", "--mount", "--uts", "--ipc", "--pid", "--root", "--wd"]
        wait_for(f"systemd comes up ({self._log})",
                 lambda: self.run("systemctl", "is-system-running")[1].strip() == "running", PATIENCE_SECONDS)

    def stop(self):
        """Ends the container, if there is one."""
        if self._container is not None:
            self._container.terminate()
            self._container.wait(PATIENCE_SECONDS)

    def command(self, *command, user):
        """The words by which this machine starts a program of the tree as one of its users."""
        return [*self._enter, "setpriv", f"--reuid={user}", f"--regid={user}", "--init-groups", *command]

    def run(self, *command, user="root", environment=None):
        """A program of the tree, as one of its users; its exit status and what it says."""
        variables = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8", **(environment or {})}
        ran = subprocess.run(self.command(*command, user=user), env=variables, text=True,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        return ran.returncode, ran.stdout

    def must(self, *command, **options):
        """The same for a program that must succeed; what it says."""
        status, said = self.run(*command, **options)
        if status != 0:
            raise RuntimeError(f"{' '.join(map(str, command))} ends with {status}:\n{said}")
        return said

    def apt(self, *arguments):
        return self.must("apt-get", "-q", "-y", "--no-install-recommends", *arguments,
                         environment={"DEBIAN_FRONTEND": "noninteractive"})

    def path(self, name):
        return self.root / name.lstrip("/")
