#!/usr/bin/env python3
"""Kills an import of 100 samples at 200 random moments; each time a second run must complete the
show: every sample whole under its own name, none numbered, and a state that loads."""

import random
import shutil
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

import scene

KILLS, SAMPLES, FRAMES = 200, 100, 16000


class Kills(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name).resolve()
        kit = self.folder / "Kit"
        for i in range(SAMPLES):
            scene.write_wave(kit / f"{i:03}.wav", FRAMES + i, i)
        self.samples = {path.name: path.read_bytes() for path in kit.iterdir()}
        self.instrument = self.folder / "Kit.aupreset"
        scene.write_preset(self.instrument, [kit / name for name in sorted(self.samples)])
        self.show = self.folder / "Show.lumo"
        self.words = scene.command(TOOL, self.show, self.show / "states", [self.instrument])

    def whole_run(self):
        """Runs to the end; what is wrong with the show then."""
        result = scene.run(self.words, self.folder)
        faults = scene.line_faults(result.stdout, self.show, [self.instrument])
        if b'"ok":true' not in result.stdout:
            faults.append(result.stdout.decode())
        return faults

    def placed(self):
        """The samples in the show by their names; leftovers of other kinds count as well."""
        return {path.name: data for path, data in scene.contents(self.show / "samples").items()}

    def test_killed_anywhere_the_next_run_completes(self):
        began = time.monotonic()
        self.assertEqual(self.whole_run(), [])
        usual = time.monotonic() - began
        moments = random.Random(1)
        half = damaged = completed = died = 0
        faults = []
        for _ in range(KILLS):
            shutil.rmtree(self.show)
            process = subprocess.Popen(self.words, stdout=subprocess.DEVNULL, cwd=self.folder)
            time.sleep(moments.uniform(0, usual))
            process.kill()
            died += process.wait() == -signal.SIGKILL
            before = self.placed()
            half += sum(data != self.samples.get(name) for name, data in before.items())
            run_faults = self.whole_run()
            after = self.placed()
            damaged += sum(after.get(name) != data for name, data in before.items())
            if after != self.samples:
                run_faults.append(f"the show holds {sorted(set(after) ^ set(self.samples))}")
            completed += not run_faults
            faults += run_faults
        print(f"\n{KILLS} kills ({died} while running): {half} half samples, {damaged} damaged "
              f"files, {completed} completed second runs", flush=True)
        self.assertEqual((half, damaged, completed), (0, 0, KILLS), faults[:10])
        self.assertGreater(died, KILLS // 2, "most kills came too late to tell anything")


if __name__ == "__main__":
    TOOL = scene.tool_from_environment()
    unittest.main(verbosity=2)
