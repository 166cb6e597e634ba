"""What the scenes on a machine of its own are made with: its tokens, its service, its screen and keyboard, the report."""

import contextlib
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


def _twice_as_large(shot):
    """A picture in portable pixmap format in grey, as large as what reads it was made for."""
    _, size, _, pixels = shot.split(b"\n", 3)
    width, height = map(int, size.split())
    green = pixels[1::3]
    wide = bytearray(2 * len(green))
    wide[::2] = wide[1::2] = green
    rows = (wide[row:row + 2 * width] for row in range(0, len(wide), 2 * width))
    return b"P5\n%d %d\n255\n" % (2 * width, 2 * height) + b"".join(row * 2 for row in rows)


class Visit:
    """A machine, and the report of what was seen there."""

    def __init__(self, machine, pictures, is_aside=False):
        """What is seen aside, while another machine is visited, is reported a scene at once."""
        self.machine = machine
        self._report = [] if is_aside else None
        self._pictures = pictures
        self.failures = 0
        # Pictures of the screen that have been read.
        self._words = {}

    # The report

    def _say(self, text):
        if self._report is None:
            print(text, flush=True)
        else:
            self._report.append(text)

    def see(self, is_so, text):
        self._say(f"{'ok    ' if is_so else 'FAIL  '}{text}")
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
        self._say(f"\n{scene.__doc__}")
        try:
            scene(self)
            is_complete = True
        except (NotSo, EOFError, RuntimeError) as what:
            self.see(False, str(what))
            self._picture_of_failure()
            is_complete = False
        self._say(f"      ({time.monotonic() - began:.0f} s)")
        if self._report:
            print("\n".join(self._report), flush=True)
            self._report.clear()
        return is_complete

    def run_all(self, scenes):
        """Each builds on the ones before it, so the first one that does not come to its end is the last."""
        return all(self.run(scene) for scene in scenes)

    def _picture_of_failure(self):
        with contextlib.suppress(EOFError, OSError, RuntimeError, AttributeError):
            self.picture("failed")

    def picture(self, name):
        if self._pictures:
            self.machine.screenshot(self._pictures / f"{name}.png")

    # Tokens

    def lay_out_tokens(self):
        """Nothing is plugged in yet."""
        self.machine.must(f"modprobe vhci-hcd && systemd-run --quiet --unit=tokens vantro-usb-tokens {TOKENS} && "
                          f"until [ -S {TOKENS} ]; do sleep 0.05; done")

    def token(self, *command):
        return self.machine.must(f"vantro-usb-tokens {TOKENS} {' '.join(map(str, command))}")

    def plug(self, serial):
        """Plugs a token in and waits until udev has told of both its interfaces."""
        self._change_tokens(f"plug {serial}")

    def unplug(self, serial):
        self._change_tokens(f"unplug {serial}")

    def unplug_all(self):
        there = [line.split()[0] for line in self.token("list").splitlines() if "plugged-in" in line]
        for serial in there:
            self.unplug(serial)

    def _change_tokens(self, command):
        # The machine has no other HID devices, and a token has two.
        self.machine.must(f"vantro-usb-tokens {TOKENS} {command} && "
                          f"wanted=$((2 * $(vantro-usb-tokens {TOKENS} list | grep -c plugged-in))); udevadm settle; "
                          "timeout 60 bash -c 'until [ $(ls -d /dev/hidraw* 2>/dev/null | wc -l) = '$wanted' ]; "
                          "do sleep 0.1; done; udevadm settle'")

    def is_blinking(self, serial):
        return f"{serial} plugged-in blinks" in self.token("list")

    # The service

    def call(self, *arguments, user="root"):
        """What the service answers, in busctl's words."""
        return self.machine.run(" ".join([*REQUEST, *map(str, arguments)]), user=user)[1].strip()

    def calls(self, requests, user="root"):
        """The same for several requests, one after the other."""
        script = "\n".join(" ".join([*REQUEST, *map(str, arguments)]) + " 2>&1" for arguments in requests)
        return self.machine.run(script, user=user)[1].splitlines()

    def start_call(self, *arguments):
        """The same without waiting for the answer, which answer() waits for."""
        request = " ".join([*REQUEST, *map(str, arguments)])
        self.machine.must("rm -f /run/answer; systemd-run --quiet --collect "
                          f"sh -c '{request} >/run/answer.new 2>&1; mv /run/answer.new /run/answer'")

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
        control_flag = r"s/^auth\t\([a-z]*\)\tpam_vantro_standalone.so.*/\1/p"
        text = self.machine.must("cd /etc/pam.d; for name in " + " ".join(PAM_SERVICES) + "; do "
                                 f"sed -n '{control_flag}' $name | tr '\\n' ' '; echo; done")
        return [line.strip() for line in text.splitlines()]

    # The screen

    def read_screen(self):
        """The words that the screen shows, read as a person reads them."""
        return self._read(self._shot())

    def wait_to_read(self, what, words, limit=PATIENCE_SECONDS):
        """Waits until the screen shows the words. To read takes this machine longer than to ask the other one does."""
        wait_for(what, lambda: words in self.read_screen(), limit, pause=1)

    def watch_screen(self, what, condition):
        """Waits for the condition; all that the screen has shown meanwhile."""
        shots = {}

        def is_so():
            shots[self._shot()] = None
            return condition()

        wait_for(what, is_so)
        return [self._read(shot) for shot in [*shots, self._shot()]]

    def _shot(self):
        shot = Path(self.machine.scratch, "screen.ppm")
        self.machine.screenshot(shot)
        return shot.read_bytes()

    def _read(self, shot):
        if shot not in self._words:
            read = subprocess.run(["tesseract", "-", "-", "--psm", "6"], input=_twice_as_large(shot), check=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                  env={**os.environ, "OMP_THREAD_LIMIT": "1"}).stdout
            self._words[shot] = " ".join(read.decode().split())
        return self._words[shot]

    def wait_for_words(self, words, whose, limit=PATIENCE_SECONDS):
        text = f"{whose} says \"{words}\""
        self.wait_to_read(text, words, limit)
        self.see(True, text)

    def wait_for_shown(self, window_class):
        wait_for(f"a window of {window_class} is there", lambda: self.machine.run(
            ON_DISPLAY + f"xdotool search --onlyvisible --class {window_class}")[0] == 0)

    def give_password(self, user, password=PASSWORD):
        """What somebody types into the greeter; one who was denied is still named there. Answers how often the greeter had
        been told to say or ask something until then."""
        self.wait_for_shown("lightdm-gtk-greeter")
        self.wait_to_read("the greeter is there", "Log In")
        if user not in self.read_screen():
            before = self.greeter_prompts()
            self.machine.type(user + "\n")
            wait_for("the greeter asks for the password", lambda: self.greeter_prompts() > before)
        prompts = self.greeter_prompts()
        self.machine.type(password + "\n")
        return prompts

    def greeter_prompts(self):
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
