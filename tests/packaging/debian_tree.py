"""A Debian tree of its own to install packages into: made once by mmdebstrap, unpacked anew for each use."""

import hashlib
import platform
import shutil
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "lab" / "tour"))

from waiting import wait_for  # noqa: E402

PATIENCE_SECONDS = 60


def run(*command, **options):
    """Runs a program that must succeed; what it says is shown when it does not."""
    ran = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False, **options)
    if ran.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}\n{ran.stdout}")
    return ran.stdout


class DebianTree:
    """To be used in a mount and process namespace of its own, by root: what is mounted and started ends with that."""

    def __init__(self, folder, packages):
        """Unpacks a tree with these packages below the folder. The packed tree is kept there for the next time."""
        folder.mkdir(parents=True, exist_ok=True)
        self.root = folder / "tree"
        self._log = folder / "boot.log"
        self._enter = ["chroot", self.root]
        self._container = None
        release = platform.freedesktop_os_release()["VERSION_CODENAME"]
        key = hashlib.sha256(" ".join([release, *packages]).encode()).hexdigest()[:16]
        packed = folder / f"base-{key}.tar"
        if not packed.exists():
            print(f"Making a Debian tree ({release}); the next time it is there.", flush=True)
            for old in folder.glob("base-*.tar"):
                old.unlink()
            making = folder / "base-unfinished.tar"
            run("mmdebstrap", "--variant=minbase", f"--include={','.join(packages)}", release, making, *self._mirror(release))
            making.rename(packed)
        if self.root.exists():
            shutil.rmtree(self.root)
        self.root.mkdir()
        run("tar", "-xpf", packed, "--numeric-owner", "-C", self.root)

    @staticmethod
    def _mirror(release):
        """Where this machine's apt has its own packages from; nothing where that is not known, and mmdebstrap chooses."""
        sites = run("apt-get", "indextargets", "--format", "$(SITE) $(CODENAME)", "Created-By: Packages").splitlines()
        return [site.split()[0] for site in sites if site.endswith(" " + release)][:1]

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
