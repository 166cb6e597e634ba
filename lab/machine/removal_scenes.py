"""The package goes again."""

from image import ADMINISTRATOR
from visiting import SERVICE
from service_scenes import FIRST


def remove(visit):
    """Removed and purged while a token is demanded, the package leaves the machine as on the first day."""
    visit.sign_out(ADMINISTRATOR)
    visit.unplug(FIRST)
    visit.see("Removing vantro-standalone" in visit.machine.must("dpkg -r vantro-standalone"), "dpkg removes it")
    visit.see_same(visit.machine.run("ls /lib/x86_64-linux-gnu/security/pam_vantro_standalone.so")[0], 2, "the module is gone")
    visit.see_same(visit.machine.run(f"systemctl is-active {SERVICE}")[1].strip(), "inactive", "the service is gone")
    visit.machine.must("dpkg -P vantro-standalone")
    visit.see_same(visit.machine.run("diff -r /root/pam.d.first-day /etc/pam.d")[1], "",
                   "purged, the PAM services are byte for byte those of the first day")
    left = visit.machine.run("find / -xdev -path /root -prune -o -path /home -prune -o -path /proc -prune -o -iname '*vantro*' "
                             "-print | grep -v -e /usr/local/bin/ -e /var/lib/dpkg/ -e /var/log/")[1].strip()
    visit.see_same(left, "", "nothing of it is left but in users' homes")


def sign_in_as_on_first_day(visit):
    """Signing in takes the password alone, as on the first day."""
    visit.give_password(ADMINISTRATOR)
    visit.wait_for_session(ADMINISTRATOR)


ALL = [remove, sign_in_as_on_first_day]
