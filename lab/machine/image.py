"""The disk of a machine of its own: Debian with a display manager, a small desktop, two accounts, and what drives it."""

import hashlib
import lzma
import shutil
import tarfile
import uuid
from dataclasses import dataclass
from pathlib import Path

from trees import dependencies, packed_tree, run, unpack

HERE = Path(__file__).resolve().parent

PACKAGES = [
    "systemd-sysv", "udev", "kmod", "dbus", "dbus-user-session", "policykit-1", "passwd", "login", "sudo", "procps",
    "pamtester",
    # A desktop: greeter, windows, a menu, a terminal, a screen lock.
    "lightdm", "lightdm-gtk-greeter", "openbox", "rofi", "xterm", "xss-lock", "xsecurelock", "fonts-dejavu-core",
    "xserver-xorg-core", "xserver-xorg-input-libinput", "xserver-xorg-legacy", "x11-xserver-utils", "xdotool"]
LEFT_OUT = ("/usr/share/man/*", "/usr/share/doc/*", "/usr/share/locale/*")

# What starts work of its own soon after the machine, which nothing here needs.
MASKED = ("systemd-networkd.service", "systemd-networkd.socket", "systemd-timesyncd.service", "systemd-random-seed.service",
          "systemd-update-utmp.service", "systemd-journal-flush.service", "apt-daily.timer", "apt-daily-upgrade.timer",
          "e2scrub_all.timer", "e2scrub_reap.service", "dpkg-db-backup.timer", "fstrim.timer", "getty@tty1.service")

# The others look at each start for what this machine has not: encrypted disks, foreign partitions, System V scripts. The
# second one reads which units the kernel's line masks.
NEEDED_GENERATORS = ("systemd-fstab-generator", "systemd-debug-generator", "systemd-getty-generator")

# Debian has both as modules.
MODULES_TO_FIND_DISK = ("virtio_pci", "virtio_blk", "ext4")
# No machine could be found out about without them.
MODULES_TO_TALK = ("virtio_console",)

ADMINISTRATOR, OUTSIDER, PASSWORD = "alice", "bob", "secret"
DISK_SIZE = "2500M"

INIT = """#!/bin/busybox sh
/bin/busybox mount -t devtmpfs dev /dev
for module in {modules}; do /bin/busybox insmod "/modules/$module"; done
while [ ! -b /dev/vda ]; do /bin/busybox usleep 20000; done
/bin/busybox mount -t ext4 /dev/vda /root
/bin/busybox mount --move /dev /root/dev
exec /bin/busybox switch_root /root /lib/systemd/systemd
"""


@dataclass
class Image:
    """What a machine starts from."""
    kernel: Path
    initrd: Path
    disk: Path


def make_image(folder, package, token_program):
    """An image in the folder, with all that the package needs but not the package. The Debian tree is kept there for the
    next time, and so is the image while it would be the same."""
    options = [f"--dpkgopt=path-exclude={pattern}" for pattern in LEFT_OUT]
    options.append("--customize-hook=" + (HERE / "kernel-into-tree").read_text(encoding="utf-8"))
    packed = packed_tree(folder, PACKAGES + dependencies(package), *options)
    image = Image(folder / "vmlinux", folder / "initrd", folder / "disk.raw")
    digest = hashlib.sha256(packed.name.encode())
    for source in (Path(__file__), token_program, *sorted(file for file in (HERE / "guest").rglob("*") if file.is_file())):
        digest.update(f"{source} {source.stat().st_mode}\n".encode() + source.read_bytes())
    made_from = folder / "image.made-from"
    if made_from.exists() and made_from.read_text(encoding="ascii") == digest.hexdigest():
        return image

    made_from.unlink(missing_ok=True)
    _make(image, packed, folder, token_program)
    made_from.write_text(digest.hexdigest(), encoding="ascii")
    return image


def _make(image, packed, folder, token_program):
    root = folder / "tree"
    unpack(packed, root)
    _furnish(root)
    shutil.copy(token_program, root / "usr/local/bin/vantro-usb-tokens")
    image.kernel.write_bytes(_unpacked_kernel((root / "boot/vmlinuz").read_bytes()))
    _make_initrd(root, folder / "initrd.tree", image.initrd)
    image.disk.unlink(missing_ok=True)
    run("mke2fs", "-q", "-t", "ext4", "-m", "0", "-E", "lazy_itable_init=1", "-d", root, image.disk, DISK_SIZE)
    shutil.rmtree(root)


def pack_files(archive, files):
    """The files as a disk that holds a tar archive."""
    with tarfile.open(archive, "w") as packed:
        for file in files:
            packed.add(file, arcname=file.name)
    return archive


def _furnish(root):
    def inside(*command):
        run("chroot", root, *command)

    shutil.copytree(HERE / "guest", root, dirs_exist_ok=True)
    # Without one, every start would be the first one, with more to do.
    (root / "etc/machine-id").write_text(uuid.uuid4().hex + "\n", encoding="ascii")
    (root / "etc/hostname").write_text("machine\n", encoding="ascii")
    (root / "etc/hosts").write_text("127.0.0.1 localhost machine\n", encoding="ascii")
    for user in (ADMINISTRATOR, OUTSIDER):
        inside("useradd", "--create-home", "--shell", "/bin/bash", user)
        run("chroot", root, "chpasswd", input=f"{user}:{PASSWORD}\n")
    inside("usermod", "--append", "--groups", "sudo", ADMINISTRATOR)
    inside("systemctl", "mask", *MASKED)
    masked_generators = root / "etc/systemd/system-generators"
    masked_generators.mkdir(exist_ok=True)
    for generator in (root / "usr/lib/systemd/system-generators").iterdir():
        if generator.name not in NEEDED_GENERATORS:
            (masked_generators / generator.name).symlink_to("/dev/null")
    inside("systemctl", "enable", "agent.service", "lightdm.service")


def _unpacked_kernel(compressed):
    """The kernel without the program that unpacks it at every start."""
    start = compressed.index(b"\xfd7zXZ\0")
    return lzma.LZMADecompressor(lzma.FORMAT_XZ).decompress(compressed[start:])


def _make_initrd(root, folder, initrd):
    version = next((root / "usr/lib/modules").iterdir()).name
    shown = run("chroot", root, "modprobe", "--set-version", version, "--show-depends", "--all", *MODULES_TO_FIND_DISK,
                *MODULES_TO_TALK)
    files = list(dict.fromkeys(line.split()[1] for line in shown.splitlines() if line.startswith("insmod ")))
    shutil.rmtree(folder, ignore_errors=True)
    for name in ("bin", "dev", "modules", "root"):
        (folder / name).mkdir(parents=True)
    shutil.copy("/bin/busybox", folder / "bin/busybox")
    for file in files:
        shutil.copy(root / file.lstrip("/"), folder / "modules")
    init = folder / "init"
    init.write_text(INIT.format(modules=" ".join(Path(file).name for file in files)), encoding="ascii")
    init.chmod(0o755)
    run("sh", "-c", f"find . | cpio --quiet -o -H newc > '{initrd}'", cwd=folder)
    shutil.rmtree(folder)
