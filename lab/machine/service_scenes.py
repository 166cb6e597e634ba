"""What the installed service does on a real kernel: the first token, who may ask what, tokens in trouble, its own end."""

import random

from calls import OPTIONAL, REQUEST, removing, saving
from image import ADMINISTRATOR, OUTSIDER
from machine import wait_for
from visiting import PAM_SERVICES, RECORDS, SERVICE, TOKENS

FIRST, SECOND, TOUCHED = "5550101", "12345678", "999"
REPLUGGINGS = 200
# Somebody asks meanwhile, again and again.
REPLUG = """RANDOM={seed}
serials=({serials})
verbs=(unplug plug)
there=(1 0)
while sleep 1; do {request} >/dev/null; done &
for _ in $(seq {times}); do
    one=$((RANDOM % 2))
    there[one]=$((1 - there[one]))
    echo ${{verbs[there[one]]}} ${{serials[one]}}
    echo pause $((RANDOM % 200))
done | vantro-usb-tokens {tokens} -
status=$?
kill $!
exit $status"""


def start(visit):
    """A machine is switched on that nothing was ever installed on by hand."""
    visit.machine.start()
    visit.see_same(visit.machine.run("systemctl is-system-running --wait")[1].strip(), "running", "systemd has started all")
    visit.see(True, "it runs " + visit.machine.must("uname -srv").strip())


def install(visit):
    """The package is installed on a machine that never had a HID device."""
    visit.see(visit.machine.run("grep -w hidraw /proc/devices")[0] != 0, "the kernel knows no hidraw devices yet")
    visit.machine.must("tar -xf /dev/vdb -C /root; cp -a /etc/pam.d /root/pam.d.first-day")
    visit.see("Setting up vantro-standalone" in visit.machine.must("dpkg -i /root/package.deb"), "dpkg installs it")
    visit.see(visit.machine.run("diff -r /root/pam.d.first-day /etc/pam.d | grep -v '^Only in /etc/pam.d: '")[1] == "",
              "no PAM service of the system's changes")


def first_device(visit):
    """The machine's first HID device is a token, plugged in while the service runs already."""
    visit.see_same(visit.call("GetSerial"), "t 0", "without a token the service answers 0")
    process = visit.service_process()
    visit.lay_out_tokens()
    visit.plug(FIRST)
    visit.see_same(visit.call("GetSerial"), f"t {FIRST}", "the service reads its serial")
    visit.see_same(visit.service_process(), process, "and was not started anew for that")
    nodes = visit.machine.must("stat -c '%n %a' /dev/hidraw*").split()
    visit.see_same(sorted(nodes[1::2]), ["600", "660"], f"udev has given its nodes their modes: {' '.join(nodes)}")
    exposure = visit.machine.must(f"systemd-analyze security --no-pager {SERVICE} | tail -1").strip()
    visit.see("OK" in exposure, f"under its real unit: {exposure[2:]}")
    visit.machine.save("installed")


def go_on(visit):
    """The service goes on on a machine of its own, from here."""
    visit.machine.start(snapshot="installed")
    visit.see_same(visit.call("GetSerial"), f"t {FIRST}", "the token's serial is read as before")


def six_methods(visit):
    """All six methods, as root, as an administrator and as somebody else."""
    asked = [("GetSerial",), ("CreateCRSettingFile", "t", FIRST), ("Validate", "t", FIRST), saving(PAM_SERVICES[0], OPTIONAL),
             removing(PAM_SERVICES[0]), ("RemoveCRSettingFile", "t", FIRST)]
    expected = [f"t {FIRST}"] + ["b true"] * 5
    for user in ("root", ADMINISTRATOR):
        visit.see_same(visit.calls(asked, user), expected, f"{user} is answered all six")
    refused = visit.calls(asked, OUTSIDER)
    visit.see(len(refused) == len(asked) and all("Access denied" in said or "rejected" in said for said in refused),
              f"{OUTSIDER} is refused all six: {refused[0]}")
    visit.see_same(visit.machine.must(f"ls {RECORDS}"), "", "no record is left")


def two_tokens(visit):
    """Two tokens: the one that came last is read, and each is found by its serial."""
    visit.plug(SECOND)
    visit.see_same(visit.call("GetSerial"), f"t {SECOND}", "the second one's serial is read")
    visit.see_same(visit.calls([("CreateCRSettingFile", "t", serial) for serial in (FIRST, SECOND)]), ["b true"] * 2,
                   "both get a record")
    visit.see_same(visit.calls([("Validate", "t", serial) for serial in (FIRST, SECOND)]), ["b true"] * 2, "both pass theirs")
    visit.unplug(SECOND)
    visit.see_same(visit.call("GetSerial"), f"t {FIRST}", "with the second one gone, the first one's serial is read")
    visit.see_same(visit.call("Validate", "t", SECOND), "b false", "the second one no longer passes")


def touch(visit):
    """A token that wants a touch is waited for."""
    visit.plug(TOUCHED)
    visit.start_call("CreateCRSettingFile", "t", TOUCHED)
    visit.wait_for("it blinks", lambda: visit.is_blinking(TOUCHED))
    visit.token("touch", TOUCHED)
    visit.see_same(visit.answer(), "b true", "touched, it gets its record")
    visit.unplug(TOUCHED)


def hung(visit):
    """A token that answers nothing any more holds up nobody who asks for another one."""
    visit.plug(SECOND)
    visit.token("hang", SECOND)
    visit.start_call("Validate", "t", SECOND)
    visit.see_same(visit.call("Validate", "t", FIRST), "b true", "the other token passes meanwhile")
    visit.see_same(visit.answer(), "b false", "the hung one's request ends")
    visit.token("recover", SECOND)
    visit.unplug(SECOND)
    visit.plug(SECOND)
    visit.see_same(visit.call("Validate", "t", SECOND), "b true", "plugged in again it passes")
    visit.unplug(SECOND)


def pulled_out(visit):
    """A token is pulled out in the middle of an exchange."""
    visit.token("delay", FIRST, 200)
    before = visit.log().count("Validate")
    visit.start_call("Validate", "t", FIRST)
    wait_for("the request is under way", lambda: visit.log().count("Validate") > before)
    visit.unplug(FIRST)
    visit.see_same(visit.answer(), "b false", "the request ends")
    visit.token("delay", FIRST, 0)
    visit.plug(FIRST)
    visit.see_same(visit.call("Validate", "t", FIRST), "b true", "plugged in again it passes")


def replugged(visit):
    """Tokens are plugged in and pulled out without regard to what is under way."""
    process = visit.service_process()

    def descriptors():
        return int(visit.machine.must(f"ls /proc/{process}/fd | wc -l"))

    before = descriptors()
    seed = random.randrange(1 << 15)
    visit.machine.must(REPLUG.format(seed=seed, times=REPLUGGINGS, serials=f"{FIRST} {SECOND}", tokens=TOKENS,
                                     request=" ".join([*REQUEST, "GetSerial"])), patience=300)
    visit.unplug_all()
    visit.plug(FIRST)
    visit.see_same(visit.call("GetSerial"), f"t {FIRST}", f"after {REPLUGGINGS} times (seed {seed}) a token is read as before")
    visit.see_same(visit.service_process(), process, "the service is the same process")
    visit.wait_for(f"with as many descriptors as before, {before}", lambda: descriptors() == before)


def ended(visit):
    """The service is killed, stopped and upgraded while a token is plugged in."""
    process = visit.service_process()
    visit.machine.must(f"kill -9 {process}")
    visit.wait_for("killed, it comes back by itself", lambda: visit.service_process() not in (0, process))
    visit.see_same(visit.call("Validate", "t", FIRST), "b true", "and the token passes")
    visit.machine.must(f"systemctl stop {SERVICE}")
    visit.see_same(visit.call("Validate", "t", FIRST), "b true", "stopped, the next request starts it")
    process = visit.service_process()
    visit.machine.must("dpkg -i /root/newer.deb")
    visit.see_same(visit.call("Validate", "t", FIRST), "b true", "upgraded, the token passes")
    visit.see(visit.service_process() != process, "in a new process")
    visit.see_same(visit.calls([("RemoveCRSettingFile", "t", serial) for serial in (FIRST, SECOND, TOUCHED)]), ["b true"] * 3,
                   "the records are removed")
    visit.unplug_all()


INSTALLATION = [start, install, first_device]
INSTALLED = [go_on, six_methods, two_tokens, touch, hung, pulled_out, replugged, ended]
