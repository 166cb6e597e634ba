"""A token lab that runs, with the tool in it: what a person does with the lab's window, and the files of both. To be
imported on the desktop that it is to run on."""

import os
import signal
import xml.etree.ElementTree
from pathlib import Path

import accessibility
import display

LAB = "vantro-token-lab"
TOOL = "vantro-standalone"
START_AGAIN = "Start the tool again"


def start(desktop, build, state):
    """Starts a lab; answers its process."""
    return desktop.start([str(build / "lab" / "bin" / LAB), "--state", str(state)])


class RunningLab:
    def __init__(self, desktop, build, state):
        self.state = state
        self.process = start(desktop, build, state)
        self.lab = accessibility.program(LAB)
        self.tool = accessibility.program(TOOL)

    def close(self):
        """Ends it as closing its window does; answers its exit status."""
        self.process.terminate()
        return self.process.wait(30)

    def processes(self, part):
        """The process ids whose command line names this part of the lab's state."""
        found = []
        for folder in Path("/proc").glob("[0-9]*"):
            try:
                command = (folder / "cmdline").read_bytes().decode(errors="replace")
            except OSError:
                continue
            if str(self.state / part) in command and int(folder.name) != os.getpid():
                found.append(int(folder.name))
        return found

    # The tool

    def main_window(self):
        return self.tool.windows[0]

    def front_window(self):
        """The tool's window in front, as the display knows it."""
        return accessibility.wait_for("the display shows a window of the tool",
                                      lambda: display.windows(self.tool.process))[-1]

    def stop_tool(self):
        """Ends the tool as the end of a session does."""
        os.kill(self.tool.process, signal.SIGTERM)
        self.wait_for_end_of_tool()

    def wait_for_end_of_tool(self):
        again = self.lab.wait("push button", START_AGAIN)
        accessibility.wait_for("the tool has ended", lambda: again.is_enabled)

    def start_tool(self):
        self.wait_for_end_of_tool()
        self.lab.find("push button", START_AGAIN).press()
        self.tool = accessibility.program(TOOL)

    def restart_tool(self):
        self.stop_tool()
        self.start_tool()

    # The tokens

    def plug_in(self, token):
        self.lab.wait("check box", f"Plug token {token} in").press()
        self.lab.wait("check box", f"Pull token {token} out")

    def pull_out(self, token):
        self.lab.wait("check box", f"Pull token {token} out").press()
        self.lab.wait("check box", f"Plug token {token} in")

    def is_blinking(self, token):
        return self.lab.wait("push button", f"Touch token {token}").is_enabled

    def touch(self, token):
        self.lab.wait("push button", f"Touch token {token}").press()

    # Somebody who signs in

    def try_sign_in(self, account):
        chosen = self.lab.wait("combo box")
        if chosen.name != account:
            display.press(self._lab_window(), "alt+i", account[0])
            accessibility.wait_for(f"{account} is chosen", lambda: chosen.name == account)
        self.lab.wait("push button", "Try").press()

    def sign_in_says(self, text):
        return text in self._lab_label("What came of it")

    def screens_say(self, text):
        return text in self._lab_label("Screens")

    def bring_lab_to_front(self):
        display.bring_to_front(self._lab_window())

    def _lab_window(self):
        return display.windows(self.lab.process)[-1]

    def _lab_label(self, description):
        return self.lab.wait("label", description=description).name

    # The files

    def log(self):
        return (self.state / "log" / TOOL / "VantroStandalone.log").read_text(encoding="utf-8")

    def document_path(self):
        return self.state / "settings" / "VantroStandaloneSetting.xml"

    def setting(self, path):
        try:
            return xml.etree.ElementTree.parse(self.document_path()).getroot().findtext(path)
        except xml.etree.ElementTree.ParseError:
            return None

    def complaints(self):
        """What a build with a sanitizer has found, with what follows it."""
        found = []
        for log in ("tool-errors.log", "service.log"):
            path = self.state / "log" / log
            text = path.read_text(encoding="utf-8", errors="replace") if path.exists() else ""
            position = min((text.find(mark) for mark in ("Sanitizer", "runtime error:") if mark in text), default=-1)
            if position >= 0:
                found.append(text[max(0, position - 200):])
        return found
