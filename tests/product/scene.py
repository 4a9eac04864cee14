"""Shared by the tests of this folder: paths, presets derived from the example, and runs."""

import os
import plistlib
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
GLASS = PROJECT / "examples/glass"
TOOL = Path(os.environ["LUMO_TOOL"]).resolve()


def preset_with_samples(target, samples):
    """Writes the example preset to `target`, with the paths of its first samples replaced."""
    state = plistlib.loads((GLASS / "Glass.aupreset").read_bytes())
    state["file-references"].update(
        zip(sorted(state["file-references"]), (str(sample) for sample in samples)))
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(plistlib.dumps(state))
    return target


def run(words, **options):
    """Runs a command to its end; captures its standard output and error as bytes."""
    return subprocess.run([str(word) for word in words], stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=600, check=False,
                          **options)


class SceneTest(unittest.TestCase):
    """A test in a temporary folder that has a copy of the example in glass/."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.glass = self.folder / "glass"
        shutil.copytree(GLASS, self.glass)
        self.show = self.folder / "Show.lumo"
        self.states = self.folder / "states"

    def command(self, *instruments):
        """The tool's command line for importing into this test's show."""
        return [TOOL, "--package", self.show, "--states", self.states, *instruments]
