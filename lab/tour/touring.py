"""What the guided tour is made with."""

import contextlib
import gettext
import os
import re
import subprocess
import xml.etree.ElementTree
from pathlib import Path

import accessibility
import display
from running_lab import RunningLab
from scenes import SERIALS
from waiting import NotSo
from words import Words

BUTTONS = {
    "register": ("RegistrationUserKeyView", "register_button"),
    "cancel": ("RegistrationUserKeyView", "cancel_button"),
    "delete": ("DeletionUserKeyView", "delete_button"),
    "sign_in": ("LoginAuthAlertView", "authenticate_button"),
    "quit": ("LoginAuthAlertView", "quit_button"),
    "ok": ("CommonMessage", "ok"),
    "refuse": ("CommonMessage", "cancel"),
    "close": ("CommonMessage", "close"),
}


class Tour(RunningLab):
    """What a scene works with: a lab of its own, what the tool's windows say, and the report."""

    def __init__(self, desktop, build, state, output, language):
        super().__init__(desktop, build, state)
        self._desktop = desktop
        self._output = output
        self._words = Words(language)
        self._module_texts = gettext.translation("pam_vantro_standalone", build / "share" / "locale", [language],
                                                 fallback=True)
        self._shots = 0
        self.failures = 0

    # The report

    def see(self, is_so, text):
        print(f"{'ok    ' if is_so else 'NOT SO'}  {text}", flush=True)
        if not is_so:
            self.failures += 1

    def wait_for(self, text, condition, limit=15):
        answer = accessibility.wait_for(text, condition, limit)
        self.see(True, text)
        return answer

    def screenshot(self, name):
        self._shots += 1
        self._desktop.screenshot(str(self._output / f"{self._shots:02d}-{name}.png"))

    def screenshot_of_lab(self, name):
        """The same, with the lab's window before the tool's."""
        front = self.front_window()
        self.bring_lab_to_front()
        self.screenshot(name)
        display.bring_to_front(front)

    def run(self, scene):
        print(f"\n{scene.__doc__}", flush=True)
        try:
            scene(self)
        except NotSo as what:
            self.see(False, str(what))
        else:
            return True
        self.screenshot("not-so")
        return False

    # The tool

    def _modal(self, role):
        found = [window for window in self.tool.windows if window.role == role and "showing" in window.states]
        return found[-1] if found else None

    def dialog(self):
        return self._modal("dialog")

    def alert(self):
        return self._modal("alert")

    def text(self, table, key, count=None):
        return self._words.text(table, key, count)

    def module_text(self, text):
        """What the login module says, in the language of the desktop."""
        return self._module_texts.gettext(text)

    def says(self, window, table, key, count=None):
        return window.says(self.text(table, key, count))

    def tab(self, page):
        return self.text("TabView", f"tab_{page}")

    def button(self, window, name):
        return window.wait("push button", self.text(*BUTTONS[name]))

    def check_box(self, table, key):
        return self.main_window().wait("check box", self.text(table, key))

    def choose_tab(self, page):
        name = self.tab(page)
        self.main_window().wait("page tab", name).press()
        accessibility.wait_for(f"the page {name} is shown", lambda: self.main_window().name == name)

    def open_dialog(self, page, verb):
        name = self.text(page, f"{verb}_button_name")
        self.main_window().wait("push button", name).press()
        return self.wait_for(f"\"{name}\" opens a dialog", self.dialog)

    def open_registration(self):
        return self.open_dialog("UserView", "register")

    def press_when_enabled(self, window, button):
        found = self.button(window, button)
        accessibility.wait_for(f"{button} is enabled", lambda: found.is_enabled)
        found.press()

    def press_and_close(self, dialog, button):
        self.press_when_enabled(dialog, button)
        self.wait_for(f"{button} closes the dialog", lambda: self.dialog() is None)

    def serial_text(self, dialog):
        label = dialog.find("label", description=self.text("RegistrationUserKeyView", "serial_description"))
        return label.name if label else ""

    def _table(self, page):
        return self.main_window().wait("table", self.text(page, "table_name"))

    def rows(self, page):
        return self._table(page).rows()

    def user_keys(self):
        return self.rows("UserView")

    def select_rows(self, page, rows):
        self._table(page).select_rows(rows)

    def start_another_tool(self):
        """Starts the program once more as the one that is open was started; answers its exit status."""
        process = Path("/proc") / str(self.tool.process)
        variables = (process / "environ").read_bytes().rstrip(b"\0").split(b"\0")
        program = os.readlink(process / "exe")
        return subprocess.run([program], env=dict(variable.split(b"=", 1) for variable in variables), timeout=15,
                              stdin=subprocess.DEVNULL, capture_output=True, check=False).returncode

    def wait_for_serial_in_log(self, token):
        """Waits until the tool has counted the token that was plugged in last."""
        serial = SERIALS[token]
        accessibility.wait_for(f"the tool knows token {token}",
                               lambda: self.log().rstrip().splitlines() and self._last_counted() == serial)

    def _last_counted(self):
        counted = [line for line in self.log().splitlines() if "Connected YubiKey [Serial = " in line]
        is_told = "YubiKey connection notification" in self.log().rsplit("Connected YubiKey [Serial = ", 1)[-1]
        return counted[-1].rsplit("= ", 1)[1].rstrip("].") if counted and is_told else None

    # The files

    def pam_services(self):
        return [self.state / "pam.d" / name for name in ("authorization", "screensaver", "screensaver_new")]

    def pam_flags(self):
        """The control flag of the add-on's entry in each PAM service; None where there is none."""
        entries = [re.search(r"^auth\s+(\S+)\s+pam_vantro_standalone\.so", path.read_text(encoding="utf-8"), re.M)
                   for path in self.pam_services()]
        return [entry and entry.group(1) for entry in entries]

    def print_pam(self, title):
        print(f"\n{title}")
        for path in self.pam_services():
            print(f"  {path.name}")
            for line in path.read_text(encoding="utf-8").splitlines():
                print(f"    {line}")
        print()

    @contextlib.contextmanager
    def missing_module(self):
        """The lab without the PAM module."""
        module = self.state / "security" / "pam_vantro_standalone.so"
        aside = module.with_suffix(".aside")
        module.rename(aside)
        try:
            yield
        finally:
            aside.rename(module)

    def document_users(self):
        document = xml.etree.ElementTree.parse(self.document_path()).getroot()
        return [(user.findtext("Account"), [key.text for key in user.iter("Serial")])
                for user in document.iter("UserSetting")]

    def records(self):
        return sorted(os.listdir(self.state / "challenge-response"))

    def print_files(self):
        print(f"\n{self.document_path()}")
        print(self.document_path().read_text(encoding="utf-8"))
        print("Challenge-response records")
        for name in self.records():
            information = (self.state / "challenge-response" / name).stat()
            print(f"  {information.st_mode & 0o7777:04o} {information.st_size:6d} {name}")
        for log in ("vantro-standalone/VantroStandalone.log", "service.log"):
            path = self.state / "log" / log
            print(f"\n{path}")
            print(path.read_text(encoding="utf-8", errors="replace") if path.exists() else "  (none)")
