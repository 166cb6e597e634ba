"""What the scenes on a machine of its own are made with: its tokens, its service, its screen and keyboard, the report."""

import os
import subprocess
import time
from pathlib import Path

from calls import REQUEST
from image import PASSWORD
from machine import PATIENCE_SECONDS, wait_for
from waiting import NotSo

TOKENS = "/run/tokens"
SERVICE = "com.vantro.Standalone1"
PAM_SERVICES = ("authorization", "screensaver", "screensaver_new")
DOCUMENT = "/var/lib/vantro-standalone/settings/VantroStandaloneSetting.xml"
RECORDS = "/var/lib/vantro-standalone/challenge-response"

# Whoever may look at the display that has the seat.
ON_DISPLAY = "export DISPLAY=:0 XAUTHORITY=/run/lightdm/root/:0; "


class Visit:
    """A machine, and the report of what was seen there."""

    def __init__(self, machine, pictures):
        self.machine = machine
        self._pictures = pictures
        self.failures = 0
        # Pictures of the screen that have been read.
        self._words = {}

    # The report

    def see(self, is_so, text):
        print(f"{'ok    ' if is_so else 'FAIL  '}{text}", flush=True)
        if not is_so:
            self.failures += 1

    def see_same(self, seen, expected, text):
        self.see(seen == expected, text if seen == expected else f"{text}: not {expected!r} but {seen!r}")

    def wait_for(self, text, condition, limit=PATIENCE_SECONDS):
        answer = wait_for(text, condition, limit)
        self.see(True, text)
        return answer

    def run(self, scene):
        """Whether the scene came to its end; what it says of itself stands above what was seen."""
        began = time.monotonic()
        print(f"\n{scene.__doc__}", flush=True)
        try:
            scene(self)
        except (NotSo, EOFError, RuntimeError) as what:
            self.see(False, str(what))
            self.picture("failed", is_wanted=True)
            return False
        print(f"      ({time.monotonic() - began:.0f} s)", flush=True)
        return True

    def picture(self, name, is_wanted=False):
        if self._pictures or is_wanted:
            folder = self._pictures or Path.cwd()
            self.machine.screenshot(folder / f"{name}.png")

    # Tokens

    def lay_out_tokens(self):
        """Nothing is plugged in yet."""
        self.machine.must(f"modprobe vhci-hcd && systemd-run --quiet --unit=tokens vantro-usb-tokens {TOKENS} && "
                          f"until [ -S {TOKENS} ]; do sleep 0.05; done")

    def token(self, *command):
        return self.machine.must(f"vantro-usb-tokens {TOKENS} {' '.join(map(str, command))}")

    def plug(self, serial):
        """Plugs a token in and waits until udev has told of both its interfaces."""
        before = self.hidraw_count()
        self.token("plug", serial)
        wait_for(f"both interfaces of token {serial} are there", lambda: self.hidraw_count() == before + 2)
        self.machine.must("udevadm settle")

    def unplug(self, serial):
        before = self.hidraw_count()
        self.token("unplug", serial)
        wait_for(f"the interfaces of token {serial} have gone", lambda: self.hidraw_count() == before - 2)

    def unplug_all(self):
        for line in self.token("list").strip().splitlines()[1:]:
            self.token("unplug", line.split()[0])
        wait_for("no token is left", lambda: self.hidraw_count() == 0)

    def hidraw_count(self):
        return len(self.machine.run("ls -d /dev/hidraw*  2>/dev/null")[1].split())

    def is_blinking(self, serial):
        return f"{serial} plugged-in blinks" in self.token("list")

    # The service

    def call(self, *arguments, user="root"):
        """What the service answers, in busctl's words."""
        return self.machine.run(" ".join([*REQUEST, *map(str, arguments)]), user=user)[1].strip()

    def start_call(self, *arguments):
        """The same without waiting for the answer, which answer() waits for."""
        self.machine.must("rm -f /run/answer; systemd-run --quiet --collect sh -c '" + " ".join([*REQUEST, *map(str, arguments)]) +
                          " >/run/answer.new 2>&1; mv /run/answer.new /run/answer'")

    def answer(self):
        return wait_for("the service answers", lambda: self.machine.run("cat /run/answer")[1].strip()
                        if self.machine.run("test -e /run/answer")[0] == 0 else "")

    def service_process(self):
        return int(self.machine.must(f"systemctl show --value -p MainPID {SERVICE}"))

    def log(self):
        """What the service has logged since the machine was started."""
        return self.machine.must("journalctl -b -q -o cat -t vantro-standalone-service")

    def entries(self):
        """The control flag of the add-on's entry in each PAM service; none where there is none."""
        text = self.machine.must("cd /etc/pam.d; for name in " + " ".join(PAM_SERVICES) + "; do "
                                 "sed -n 's/^auth\\t\\([a-z]*\\)\\tpam_vantro_standalone.so.*/\\1/p' $name | tr '\\n' ' '; echo; done")
        return [line.strip() for line in text.splitlines()]

    # The screen

    def read_screen(self):
        """The words that the screen shows, read as a person reads them."""
        return self._read(self._shot())

    def watch_screen(self, what, condition):
        """Waits for the condition; all that the screen has shown meanwhile."""
        shots = {}

        def is_so():
            shots[self._shot()] = None
            return condition()

        wait_for(what, is_so)
        return [self._read(shot) for shot in [*shots, self._shot()]]

    def _shot(self):
        shot = Path(self.machine.scratch, "screen.png")
        self.machine.screenshot(shot)
        return shot.read_bytes()

    def _read(self, shot):
        if shot not in self._words:
            larger = subprocess.run(["convert", "-", "-colorspace", "Gray", "-resize", "250%", "pgm:-"], input=shot, check=True,
                                    stdout=subprocess.PIPE).stdout
            read = subprocess.run(["tesseract", "-", "-", "--psm", "6"], input=larger, check=True, stdout=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL, env={**os.environ, "OMP_THREAD_LIMIT": "1"}).stdout
            self._words[shot] = " ".join(read.decode().split())
        return self._words[shot]

    def wait_for_words(self, words, whose, limit=PATIENCE_SECONDS):
        self.wait_for(f"{whose} says \"{words}\"", lambda: words in self.read_screen(), limit)

    def wait_for_shown(self, window_class):
        wait_for(f"a window of {window_class} is there", lambda: self.machine.run(
            ON_DISPLAY + f"xdotool search --onlyvisible --class {window_class}")[0] == 0)

    def give_password(self, user, password=PASSWORD):
        """What somebody types into the greeter; one who was denied is still named there."""
        self.wait_for_shown("lightdm-gtk-greeter")
        wait_for("the greeter is there", lambda: "Log In" in self.read_screen())
        if user not in self.read_screen():
            prompts = self.greeter_prompts()
            self.machine.type(user + "\n")
            wait_for("the greeter asks for the password", lambda: self.greeter_prompts() > prompts)
        self.machine.type(password + "\n")

    def greeter_prompts(self):
        """How often the greeter was told to say or ask something."""
        return int(self.machine.run("grep -c 'Prompt greeter with' /var/log/lightdm/lightdm.log")[1] or 0)

    def sessions(self):
        """Who has a desktop."""
        said = self.machine.must("loginctl list-sessions --no-legend")
        return [line.split()[2] for line in said.splitlines() if line.split()[2] != "lightdm" and "seat0" in line]

    def wait_for_session(self, user):
        self.wait_for(f"{user} has a desktop", lambda: user in self.sessions() and
                      self.machine.run(f"pgrep -u {user} -x openbox && pgrep -u {user} -x xss-lock")[0] == 0)

    def sign_out(self, user):
        self.machine.must(f"loginctl terminate-user {user}")
        wait_for(f"{user} is signed out", lambda: user not in self.sessions())
