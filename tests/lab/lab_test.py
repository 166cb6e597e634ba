"""What the tests of running labs share: a desktop of their own, and a state folder for each test."""

import os
import shutil
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "lab" / "tour"))

from desktop import Desktop  # noqa: E402

BUILD = Path(sys.argv[1]).resolve()


class LabTest(unittest.TestCase):
    # Known once the desktop runs.
    desktop = None
    accessibility = None

    def wait_for(self, what, condition):
        return self.accessibility.wait_for(what, condition)

    def setUp(self):
        self.state = Path(tempfile.mkdtemp(prefix="test.", dir=BUILD / "lab"))
        self.addCleanup(shutil.rmtree, self.state)

    def start_lab(self):
        from running_lab import RunningLab
        lab = RunningLab(self.desktop, BUILD, self.state)
        self.addCleanup(lab.process.wait, 30)
        self.addCleanup(lab.process.terminate)
        return lab


def main(name):
    with open(BUILD / "lab" / f"{name}.log", "w", encoding="utf-8") as log, Desktop(log=log) as desktop:
        os.environ.clear()
        os.environ.update(desktop.environment)
        import accessibility
        LabTest.desktop = desktop
        LabTest.accessibility = accessibility
        result = unittest.main(argv=sys.argv[:1], exit=False, verbosity=2).result
    sys.exit(not result.wasSuccessful())
