"""Debian trees made by mmdebstrap: packed once and kept, unpacked for each use."""

import hashlib
import platform
import re
import shutil
import subprocess


def run(*command, **options):
    """Runs a program that must succeed; what it says is shown when it does not."""
    ran = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False, **options)
    if ran.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}\n{ran.stdout}")
    return ran.stdout


def dependencies(package):
    """The packages that a package file needs; the first one where it names several to choose from."""
    depends = run("dpkg-deb", "-f", package, "Depends").strip()
    return [re.sub(r"[ (|].*", "", choice.strip()) for choice in depends.split(",")]


def newer_package(package, folder):
    """The same package with a higher version, as a file in the folder."""
    unpacked = folder / "newer"
    shutil.rmtree(unpacked, ignore_errors=True)
    run("dpkg-deb", "--raw-extract", package, unpacked)
    control = unpacked / "DEBIAN/control"
    control.write_text(re.sub(r"^Version: (.*)$", r"Version: \1+newer", control.read_text(encoding="utf-8"), flags=re.M),
                       encoding="utf-8")
    run("dpkg-deb", "-Zgzip", "--build", "--root-owner-group", unpacked, folder / "newer.deb")
    return folder / "newer.deb"


def packed_tree(folder, packages, *options):
    """A tree of this machine's release with these packages, as a tar file in the folder. It is kept there for the next
    time; one of other packages or with other options of mmdebstrap's takes its place."""
    folder.mkdir(parents=True, exist_ok=True)
    release = platform.freedesktop_os_release()["VERSION_CODENAME"]
    key = hashlib.sha256(" ".join(map(str, [release, *packages, *options])).encode()).hexdigest()[:16]
    packed = folder / f"base-{key}.tar"
    if not packed.exists():
        print(f"Making a Debian tree ({release}); the next time it is there.", flush=True)
        for old in folder.glob("base-*.tar"):
            old.unlink()
        making = folder / "base-unfinished.tar"
        run("mmdebstrap", "--variant=minbase", f"--include={','.join(packages)}", *options, release, making, *_mirror(release))
        making.rename(packed)
    return packed


def unpack(packed, root):
    """Unpacks a tree in the place of what is there."""
    if root.exists():
        shutil.rmtree(root)
    root.mkdir()
    # Names of accounts may have other numbers here.
    run("tar", "-xpf", packed, "--numeric-owner", "-C", root)


def _mirror(release):
    """Where this machine's apt has its own packages from; nothing where that is not known, and mmdebstrap chooses."""
    sites = run("apt-get", "indextargets", "--format", "$(SITE) $(CODENAME)", "Created-By: Packages").splitlines()
    return [site.split()[0] for site in sites if site.endswith(" " + release)][:1]
