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
import time
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from lumo_testing import (FolderTest, built_program, contents, import_command, incomplete_files,
                          line_faults, run, write_preset, write_wave)
from traced_import import Stage, can_trace

TOOL = built_program("LUMO_TOOL")
RANDOM_KILLS, SAMPLES, FRAMES = 40, 20, 200000


def samples_in(show):
    """The files in a show's samples folder by path, including leftovers that are not samples."""
    return {"samples" / path: data for path, data in contents(show / "samples").items()}


def faults_after_kill(stage, call, wanted):
    """The faults after a kill at one call, and after the run that follows it."""
    show = stage.show(f"{call.name}-{call.number}")
    prior = contents(show)
    if stage.run_with_fault(show, call, "signal=SIGKILL").returncode != -signal.SIGKILL:
        return [f"{call}: was not killed"]
    half = incomplete_files(show / "samples", stage.originals)
    faults = [f"{path} is half" for path in half]
    left = samples_in(show)
    result = stage.run(show)
    faults += line_faults(result.stdout, show, stage.instruments)
    if result.stdout.count(b'"ok":true') != len(stage.instruments):
        faults.append(f"the next run: {result.stdout.decode()}")
    after = contents(show)
    changed = [path for path, data in (prior | left).items() if after.get(path) != data]
    faults += [f"{path} changed" for path in changed]
    if samples_in(show) != wanted:
        faults.append(f"the show holds {sorted(map(str, samples_in(show)))}")
    shutil.rmtree(show)
    return [f"{call}: {fault}" for fault in faults]


class Kills(FolderTest):
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
            write_wave(kit / f"{i:02}.wav", FRAMES + i, i)
        samples = {Path("samples", "Kit", path.name): path.read_bytes() for path in kit.iterdir()}
        instrument = write_preset(self.folder / "Kit.aupreset", sorted(kit.iterdir()))
        words = import_command(TOOL, self.show, [instrument])

        began = time.monotonic()
        self.assertIn(b'"ok":true', run(words).stdout)
        usual = time.monotonic() - began
        moments = random.Random(1)
        died = 0
        for _ in range(RANDOM_KILLS):
            shutil.rmtree(self.show)
            process = subprocess.Popen(words, stdout=subprocess.DEVNULL, cwd=self.folder)
            time.sleep(moments.uniform(0, usual))
            process.kill()
            died += process.wait() == -signal.SIGKILL
            for path, data in samples_in(self.show).items():
                self.assertEqual(data, samples.get(path), f"{path} is half")
            result = run(words)
            self.assertEqual(line_faults(result.stdout, self.show, [instrument]), [])
            self.assertIn(b'"ok":true', result.stdout)
            self.assertEqual(samples_in(self.show), samples)
        print(f"\n{RANDOM_KILLS} kills, {died} while it ran", flush=True)


if __name__ == "__main__":
    unittest.main(verbosity=2)
