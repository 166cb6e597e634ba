"""Screenshots of the tool as it is installed in a Debian tree: every language, light and dark, as an administrator sees it
and as somebody else does."""

import os
import subprocess
import sys
from pathlib import Path
from unittest import mock

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "lab" / "tour"))

import display  # noqa: E402
from debian_tree import PATIENCE_SECONDS  # noqa: E402
from desktop import Desktop  # noqa: E402
from waiting import wait_for  # noqa: E402
from words import LANGUAGES  # noqa: E402

# What a desktop brings along: fonts, the toolkit's texts in other languages, a theme.
TOOLS_FOR_PICTURES = ["fonts-dejavu-core", "fonts-vlgothic", "qt6-translations-l10n", "qt6ct"]
TOOL = "vantro-standalone"


def steady_picture(desktop, file):
    """Saves what the display shows once it shows the same twice."""
    seen = []

    def is_steady():
        desktop.screenshot(file)
        seen.append(subprocess.run(["identify", "-format", "%#", file], capture_output=True, check=True).stdout)
        return seen[-1] in seen[-2:-1]

    wait_for(f"the display comes to rest: {file}", is_steady, PATIENCE_SECONDS)


def wait_for_window(tool, known=()):
    """Brings the tool's window to the front once it shows one that is none of the known ones; all that it shows then."""
    def new_ones():
        if tool.poll() is not None:
            raise RuntimeError("the installed tool shows no window")
        there = display.windows(tool.pid)
        return [] if set(there) & set(known) else there

    there = wait_for("the installed tool shows a window", new_ones, PATIENCE_SECONDS)
    display.bring_to_front(there[-1])
    return there


def start_tool(desktop, tree, user):
    passed_on = ("DISPLAY", "LANGUAGE", "FC_LANG", "LC_ALL", "QT_QPA_PLATFORM", "QT_QPA_PLATFORMTHEME")
    variables = [f"{name}={value}" for name, value in desktop.environment.items() if name in passed_on]
    desktop.configure_theme(tree.path(f"/home/{user}/.config"))
    tree.must("chown", "-R", f"{user}:{user}", f"/home/{user}")
    return desktop.start(tree.command("env", "-i", f"HOME=/home/{user}", "PATH=/usr/bin", *variables, TOOL, user=user))


def make_first_start(desktop, tree):
    """The tool ends after the message that it shows to an administrator at the very first start."""
    tool = start_tool(desktop, tree, "alice")
    display.press(wait_for_window(tool)[-1], "Escape")
    if tool.wait(PATIENCE_SECONDS) != 0:
        raise RuntimeError("the first start does not end cleanly")


def take_pictures_of_pages(desktop, tree, name):
    tool = start_tool(desktop, tree, "alice")
    message = wait_for_window(tool)
    steady_picture(desktop, f"{name}-before-you-begin.png")
    display.press(message[-1], "Escape")
    window = wait_for_window(tool, message)[-1]
    for page in ("user-keys", "master-keys", "administrator-keys", "settings"):
        steady_picture(desktop, f"{name}-{page}.png")
        display.press(window, "ctrl+Tab")


def take_picture_of_refusal(desktop, tree, name):
    wait_for_window(start_tool(desktop, tree, "bob"))
    steady_picture(desktop, f"{name}-no-administrator.png")


def take_pictures(tree, folder):
    folder.mkdir(parents=True, exist_ok=True)
    with open(folder / "log", "w", encoding="utf-8") as log:
        def on_a_desktop(do, *arguments, **options):
            with Desktop(log=log, **options) as desktop, mock.patch.dict(os.environ, desktop.environment):
                do(desktop, tree, *arguments)

        on_a_desktop(make_first_start)
        for language in LANGUAGES:
            for is_dark in (False, True):
                name = folder / f"installed-{language}-{'dark' if is_dark else 'light'}"
                for take in (take_pictures_of_pages, take_picture_of_refusal):
                    on_a_desktop(take, name, language=language, dark=is_dark)
