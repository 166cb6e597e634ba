"""A machine of its own, emulated by QEMU: started, asked over its serial port, typed on, looked at, switched off."""

import contextlib
import json
import re
import shlex
import shutil
import socket
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tour"))

from trees import run  # noqa: E402
from waiting import NotSo  # noqa: E402
import waiting  # noqa: E402

# How long something may take that is a matter of seconds when this machine has nothing else to do.
PATIENCE_SECONDS = 180
# To ask the machine takes it longer than it takes this one, and holds up what is waited for.
PAUSE_SECONDS = 0.3

# Other clocks run too fast or stand still while the emulation is slow, and what waits in the guest then gives up.
KERNEL_LINE = ("root=/dev/vda rw quiet loglevel=4 mitigations=off nokaslr no_timer_check tsc=unstable clocksource=hpet "
               "random.trust_cpu=on cryptomgr.notests audit=0 net.ifnames=0 console=ttyS0")

# What newer ones have besides costs more, emulated, than it gives, and so does a second one beside it.
PROCESSOR = "Nehalem"

# Names of keys where a character is not its own.
KEYS = {" ": "spc", "-": "minus", "/": "slash", "\n": "ret", ".": "dot", "|": "shift-backslash", "_": "shift-minus",
        ";": "semicolon", "=": "equal", "'": "apostrophe", ">": "shift-dot", ":": "shift-semicolon",
        ",": "comma", "&": "shift-7", '"': "shift-apostrophe"}


def _as_line(text):
    return text.replace("\\", "\\\\").replace("\n", "\\n")


def _from_line(line):
    return re.sub(r"\\(.)", lambda escaped: "\n" if escaped[1] == "n" else escaped[1], line)


def wait_for(what, condition, limit=PATIENCE_SECONDS, pause=PAUSE_SECONDS):
    """Waits until a condition of a machine answers something that counts as true, and answers that."""
    return waiting.wait_for(what, condition, limit, pause)


class Machine:
    """To be used in a with statement, which ends it."""

    def __init__(self, image, files, folder, name, is_shown=False):
        """The machine changes a disk of its own, which begins as the image's; `files` is a disk to read from. One that is
        shown can be looked at over VNC."""
        self._image = image
        self._files = files
        self._display = ["-vnc", "localhost:0,to=99"] if is_shown else ["-display", "none"]
        self._disk = folder / f"{name}.qcow2"
        self._console = folder / f"{name}.console"
        self._is_twin = False
        self._sockets = None
        self._process = None
        self._monitor = None
        self._agent = None

    def __enter__(self):
        self._sockets = tempfile.TemporaryDirectory(prefix="vantro-machine.")
        if self._is_twin:
            return self
        run("qemu-img", "create", "-q", "-f", "qcow2", "-b", self._image.disk.resolve(), "-F", "raw", self._disk)
        return self

    def __exit__(self, kind, value, trace):
        self._end()
        self._sockets.cleanup()
        self._disk.unlink(missing_ok=True)

    @property
    def scratch(self):
        """A folder that is gone with the machine."""
        return self._sockets.name

    def twin(self, name):
        """Another machine with all of this one's snapshots, switched off."""
        twin = Machine(self._image, self._files, self._disk.parent, name)
        twin._is_twin = True
        # Standing still, its disk is all in the file.
        self._ask_monitor("stop")
        shutil.copy(self._disk, twin._disk)
        self._ask_monitor("cont")
        return twin

    def start(self, *kernel_words, snapshot=None):
        """Switches it on, or has it go on from a snapshot. It is up once the agent answers."""
        monitor, agent = (Path(self._sockets.name) / name for name in ("monitor", "agent"))
        command = [
            "setpriv", "--pdeathsig", "TERM", "qemu-system-x86_64", "-machine", "pc", "-accel", "tcg,tb-size=512",
            "-cpu", PROCESSOR, "-m", "1024", "-nodefaults", *self._display, "-device", "VGA,xres=1024,yres=768",
            "-serial", f"file:{self._console}",
            "-drive", f"file={self._disk},if=virtio,cache=unsafe",
            "-drive", f"file={self._files},if=virtio,format=raw,readonly=on",
            "-device", "virtio-serial", "-device", "virtserialport,chardev=agent,name=agent",
            "-chardev", f"socket,id=agent,path={agent},server=on,wait=off",
            "-qmp", f"unix:{monitor},server=on,wait=off",
            "-kernel", self._image.kernel, "-initrd", self._image.initrd,
            "-append", " ".join([KERNEL_LINE, *kernel_words])]
        if snapshot:
            command += ["-loadvm", snapshot]
        self._process = subprocess.Popen(command, stdin=subprocess.DEVNULL)
        self._monitor = self._connected(monitor)
        self._monitor.read()
        self._ask_monitor("qmp_capabilities")
        self._agent = self._connected(agent)
        self.must("true")

    @property
    def is_on(self):
        return self._process is not None

    def _connected(self, path):
        end = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)

        def connects():
            if self._process.poll() is not None:
                raise RuntimeError(f"QEMU ended with {self._process.returncode}")
            with contextlib.suppress(OSError):
                end.connect(str(path))
                return True
            return False

        wait_for("QEMU starts", connects)
        end.settimeout(PATIENCE_SECONDS)
        return Line(end)

    # What is asked

    def run(self, script, *, user=None, patience=PATIENCE_SECONDS):
        """Has a shell of the machine run the script, as one of its users; its exit status and what it says."""
        if user:
            script = f"runuser -u {user} -- env HOME=/home/{user} bash -c {shlex.quote(script)}"
        try:
            answer = self._agent.ask(_as_line(script), patience)
        except TimeoutError as error:
            raise NotSo(f"the machine answers within {patience} seconds: {script}") from error
        status, _, said = answer.partition(" ")
        return int(status), _from_line(said)

    def must(self, script, **options):
        """The same for what must succeed; what it says."""
        status, said = self.run(script, **options)
        if status != 0:
            raise NotSo(f"{script}: ends with {status}: {said}")
        return said

    # What is done to it from outside

    def press(self, *keys):
        """Presses keys of the keyboard, one after the other; several at once are joined by "-"."""
        for key in keys:
            self._ask_human_monitor(f"sendkey {key} 20")

    def type(self, text):
        for letter in text:
            self.press(KEYS.get(letter, f"shift-{letter.lower()}" if letter.isupper() else letter))

    def screenshot(self, path):
        """A portable pixmap, or a PNG file if the name says so."""
        self._ask_monitor("screendump", filename=str(path), format="png" if path.suffix == ".png" else "ppm")

    def vnc_port(self):
        """Where a machine that is shown can be looked at, on this machine."""
        return self._ask_monitor("query-vnc")["service"]

    def save(self, snapshot):
        """Keeps memory and disk as they are now."""
        self._ask_human_monitor(f"savevm {snapshot}")

    def go_back(self, snapshot):
        """To what was kept. It answers again by then: what is typed before is lost."""
        self._ask_human_monitor(f"loadvm {snapshot}")
        self.must("true")

    def cut_power(self):
        """Switches it off between two instructions. What it has written to its disk is there; nothing else is."""
        with contextlib.suppress(EOFError):
            self._ask_monitor("quit")
        self._process.wait(PATIENCE_SECONDS)
        self._end()

    def _ask_human_monitor(self, line):
        said = self._ask_monitor("human-monitor-command", **{"command-line": line})
        if said.strip():
            raise RuntimeError(f"{line}: {said}")

    def _ask_monitor(self, command, **arguments):
        answer = json.loads(self._monitor.ask(json.dumps({"execute": command, "arguments": arguments})))
        while "event" in answer:
            answer = json.loads(self._monitor.read())
        if "error" in answer:
            raise RuntimeError(f"{command}: {answer['error']['desc']}")
        return answer["return"]

    def _end(self):
        for line in (self._monitor, self._agent):
            if line is not None:
                line.close()
        self._monitor = self._agent = None
        if self._process is not None:
            self._process.kill()
            self._process.wait()
            self._process = None


class Line:
    """The end of a stream over which lines are asked and answered."""

    def __init__(self, end):
        self._end = end
        self._file = end.makefile("rw", encoding="utf-8", errors="replace", newline="\n")

    def ask(self, line, patience=PATIENCE_SECONDS):
        self._file.write(line + "\n")
        self._file.flush()
        return self.read(patience)

    def read(self, patience=PATIENCE_SECONDS):
        self._end.settimeout(patience)
        answer = self._file.readline()
        if not answer.endswith("\n"):
            raise EOFError("the other end has gone")
        return answer.rstrip("\n")

    def close(self):
        with contextlib.suppress(OSError):
            self._file.close()
        self._end.close()
