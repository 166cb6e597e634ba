"""The machine is switched off in the middle of a change, and started again."""

import random
import time
import xml.etree.ElementTree

from desktop_scenes import FIRST
from image import ADMINISTRATOR, PASSWORD
from machine import wait_for
from visiting import DOCUMENT, PAM_SERVICES, RECORDS
from waiting import NotSo

CUTS_OF_EACH = 5
# A start with what signing in takes: half the time is enough without a desktop and without a look at all the hardware.
NEXT_START = (
    "systemd.unit=basic.target", *(f"systemd.wants={unit}" for unit in ("agent.service", "systemd-user-sessions.service")),
    *(f"systemd.mask={unit}" for unit in (
        "systemd-udev-trigger.service", "systemd-modules-load.service", "systemd-sysctl.service", "systemd-sysusers.service",
        "kmod-static-nodes.service", "dev-hugepages.mount", "dev-mqueue.mount",
        *(f"sys-{name}.mount" for name in ("kernel-debug", "kernel-tracing", "fs-fuse-connections", "kernel-config")),
        *(f"modprobe@{module}.service" for module in ("configfs", "dm_mod", "drm", "efi_pstore", "fuse", "loop")))))
ENTRY = "auth\trequired\tpam_vantro_standalone.so\n"


def _files(visit):
    """What a change may be in the middle of: the document's keys and switch, and the PAM services."""
    parts = visit.machine.must("".join(f"cat /etc/pam.d/{name}; printf '\\f'; " for name in PAM_SERVICES) +
                               f"[ -e {DOCUMENT} ] && cat {DOCUMENT} || echo none").split("\f")
    pam, text = parts[:-1], parts[-1]
    if text == "none\n":
        return [], None, pam
    document = xml.etree.ElementTree.fromstring(text)
    users = [(user.findtext("Account"), [key.text for key in user.iter("Serial")]) for user in document.iter("UserSetting")]
    return users, document.findtext("SwitchSetting/SecureMode"), pam


def _go_to(visit, snapshot):
    if visit.machine.is_on:
        visit.machine.go_back(snapshot)
    else:
        visit.machine.start(snapshot=snapshot)


def _duration(visit, snapshot, key, is_done):
    """How long after the key the change is made, when nothing comes in between."""
    _go_to(visit, snapshot)
    began = time.monotonic()
    visit.machine.press(key)
    wait_for("the change is made", lambda: is_done(_files(visit)))
    return time.monotonic() - began


def _cut(visit, snapshot, what, key, longest, is_whole):
    """One cut within so many seconds: what is there after the next start, and whether somebody can sign in."""
    _go_to(visit, snapshot)
    before = _files(visit)
    instant = random.uniform(0, longest)
    visit.machine.press(key)
    # The instant is what is tried, not what is waited for.
    time.sleep(instant)
    visit.machine.cut_power()
    visit.machine.start(*NEXT_START)
    try:
        after = _files(visit)
    except xml.etree.ElementTree.ParseError as error:
        raise NotSo(f"{what}, switched off after {instant:.2f} s: the document is not whole: {error}") from error
    text = f"{what}, switched off after {instant:.2f} s: "
    visit.see(is_whole(visit, before, after, text), text + _told(before, after))
    # Without an entry nobody asks for a token.
    if any(ENTRY in service for service in after[2]):
        visit.lay_out_tokens()
        visit.plug(FIRST)
    status, said = visit.machine.run(f"echo {PASSWORD} | pamtester lightdm {ADMINISTRATOR} authenticate")
    visit.see(status == 0, f"{text}{ADMINISTRATOR} signs in: {said.strip().splitlines()[-1]}")
    visit.see_same(visit.machine.must(f"find /etc/pam.d {RECORDS} -name '.*.new'"), "", f"{text}nothing half is left")


def _told(before, after):
    return "all as before" if before == after else f"keys {after[0]}, demanded: {after[1]}, entries " + ", ".join(
        "old" if old == new else "new" for old, new in zip(before[2], after[2]))


def _registration_is_whole(visit, before, after, text):
    """The key is there with a record that it passes, or it is not there."""
    is_there = after[0] == [(ADMINISTRATOR, [FIRST])]
    if is_there:
        visit.see_same(visit.machine.must(f"head -2 {RECORDS}/{FIRST}"), f"vantro-challenge-response 1\nserial {FIRST}\n",
                       text + "the record is there")
    return (is_there or after[0] == before[0]) and after[1:] == before[1:]


def _demand_is_whole(_, before, after, __):
    """Each PAM service is the old one or the old one with the one line more."""
    return after[0] == before[0] and after[1] in ("true", "false") and all(
        new == old or (new.replace(ENTRY, "", 1) == old and ENTRY in new) for old, new in zip(before[2], after[2]))


def registration(visit):
    """Switched off while a token is registered."""
    longest = _duration(visit, "about-to-register", "alt-r", lambda files: files[0] == [(ADMINISTRATOR, [FIRST])])
    for _ in range(CUTS_OF_EACH):
        _cut(visit, "about-to-register", "registration", "alt-r", longest, _registration_is_whole)


def demand(visit):
    """Switched off while the PAM services are changed."""
    longest = _duration(visit, "about-to-demand", "alt-d", lambda files: all(ENTRY in service for service in files[2]))
    for _ in range(CUTS_OF_EACH):
        _cut(visit, "about-to-demand", "demand", "alt-d", longest, _demand_is_whole)
