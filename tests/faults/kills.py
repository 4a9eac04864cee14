#!/usr/bin/env python3
"""Kills an import; the next run must complete the show as if the first had not been killed.

The import is killed as it enters a system call, once for each of its calls, so every state of the
disk between two calls occurs. Calls that copy many bytes can also be interrupted, so an import of
large samples is killed at random times.
"""

import os
import random
import shutil
import signal
import subprocess
import tempfile
import time
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import scene
from traced_import import Stage, can_trace

RANDOM_KILLS, SAMPLES, FRAMES = 40, 20, 200000


def samples_in(show):
    """The files in a show's samples folder by path, including leftovers that are not samples."""
    return {path.relative_to(show): data for path, data in scene.contents(show / "samples").items()}


def faults_after_kill(stage, call, wanted):
    """The faults after a kill at one call, and after the run that follows it."""
    show = stage.show(f"{call.name}-{call.number}")
    prior = scene.contents(show)
    if stage.run_with_fault(show, call, "signal=SIGKILL").returncode != -signal.SIGKILL:
        return [f"{call}: was not killed"]
    half = scene.files_not_sound(show / "samples", stage.originals)
    faults = [f"{path} is half" for path in half]
    left = scene.contents(show / "samples")
    result = stage.run(show)
    faults += scene.line_faults(result.stdout, show, stage.instruments)
    if result.stdout.count(b'"ok":true') != len(stage.instruments):
        faults.append(f"the next run: {result.stdout.decode()}")
    after = scene.contents(show)
    changed = [path for path, data in (prior | left).items() if after.get(path) != data]
    faults += [f"{path} changed" for path in changed]
    if samples_in(show) != wanted:
        faults.append(f"the show holds {sorted(map(str, samples_in(show)))}")
    shutil.rmtree(show)
    return [f"{call}: {fault}" for fault in faults]


class Kills(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name).resolve()

    @unittest.skipUnless(can_trace(), "strace cannot be used here")
    def test_killed_at_any_system_call_the_next_run_completes(self):
        stage = Stage(TOOL, self.folder)
        calls = stage.calls()
        whole = stage.show("whole")
        self.assertEqual(stage.run(whole).stdout.count(b'"ok":true'), len(stage.instruments))
        wanted = samples_in(whole)
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            found = list(pool.map(lambda call: faults_after_kill(stage, call, wanted), calls))
        names = sorted({call.name for call in calls})
        print(f"\n{len(calls)} kills at {len(names)} kinds of calls: {', '.join(names)}",
              flush=True)
        faults = [fault for faults in found for fault in faults]
        self.assertEqual(faults, [], "\n" + "\n".join(faults))

    def test_killed_while_bytes_are_copied_the_next_run_completes(self):
        kit = self.folder / "Kit"
        for i in range(SAMPLES):
            scene.write_wave(kit / f"{i:02}.wav", FRAMES + i, i)
        samples = {Path("samples", "Kit", path.name): path.read_bytes() for path in kit.iterdir()}
        instrument = self.folder / "Kit.aupreset"
        scene.write_preset(instrument, sorted(kit.iterdir()))
        show = self.folder / "Show.lumo"
        words = scene.command(TOOL, show, show / "states", [instrument])

        began = time.monotonic()
        self.assertIn(b'"ok":true', scene.run(words, self.folder).stdout)
        usual = time.monotonic() - began
        moments = random.Random(1)
        died = 0
        for _ in range(RANDOM_KILLS):
            shutil.rmtree(show)
            process = subprocess.Popen(words, stdout=subprocess.DEVNULL, cwd=self.folder)
            time.sleep(moments.uniform(0, usual))
            process.kill()
            died += process.wait() == -signal.SIGKILL
            for path, data in samples_in(show).items():
                self.assertEqual(data, samples.get(path), f"{path} is half")
            result = scene.run(words, self.folder)
            self.assertEqual(scene.line_faults(result.stdout, show, [instrument]), [])
            self.assertIn(b'"ok":true', result.stdout)
            self.assertEqual(samples_in(show), samples)
        print(f"\n{RANDOM_KILLS} kills, {died} while it ran", flush=True)


if __name__ == "__main__":
    TOOL = scene.tool_from_environment()
    unittest.main(verbosity=2)
