#!/usr/bin/env python3
"""Lets every system call of a run fail in turn, in each of several ways, and prints the table.

A run imports an EXS instrument and a preset, with a sample that moved and a name that is taken.
Each cell is a call and an error: for every time that the run makes this call after its arguments
are checked, one run in which just that call fails. A cell holds when each run ended normally with
one true line per instrument, every file that was there before is byte-identical, and every sample
in the show is whole. The report line's own write may fail; that run is not judged by its lines.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import scene

ERRORS = ("EIO", "ENOSPC", "EACCES", "EMFILE", "EINTR")
# Memory and threads, not files: without memory nothing is promised. The end of the process
# cannot fail.
PASSED_OVER = {"brk", "mmap", "munmap", "mprotect", "mremap", "madvise", "exit", "exit_group",
               "futex", "rt_sigreturn", "getrandom"}


class Stage:
    """The run's input, and a fresh copy of its show for each run."""

    def __init__(self, folder):
        self.folder = folder
        self.input = folder / "input"
        scene.write_wave(self.input / "Kit" / "kick.wav", 300, 1)
        scene.write_wave(self.input / "Kit" / "snare.wav", 400, 2)
        scene.write_wave(self.input / "Moved" / "hat.wav", 500, 3)
        self.originals = set(scene.contents(self.input).values())
        scene.write_exs(self.input / "One.exs", [self.input / "Kit" / "kick.wav",
                                                 "/nowhere/Moved/hat.wav"])
        scene.write_preset(self.input / "Two.aupreset", [self.input / "Kit" / "snare.wav",
                                                         self.input / "Kit" / "kick.wav"])
        self.instruments = [self.input / "One.exs", self.input / "Two.aupreset"]
        show = folder / "prior"
        scene.write_wave(show / "samples" / "Kit" / "kick.wav", 77, 4)
        (show / "states").mkdir()
        (show / "states" / "One.aupreset").write_bytes(b"what was there")
        self.originals.add((show / "samples" / "Kit" / "kick.wav").read_bytes())

    def show(self, name):
        """A copy of the prior show."""
        show = self.folder / name
        shutil.copytree(self.folder / "prior", show)
        return show

    def command(self, show):
        return scene.command(TOOL, show, show / "states", self.instruments)


def calls_of(stage):
    """Each system call of a whole run in order, as (name, its number among its name's calls)."""
    show = stage.show("traced")
    trace = stage.folder / "trace"
    result = scene.run(["strace", "-f", "-o", trace, *stage.command(show)], stage.folder)
    assert result.returncode == 0, result.stderr.decode()
    counts, calls, started, candidate = {}, [], False, None
    for line in trace.read_text(errors="replace").splitlines():
        match = re.match(r"\d+ +(\w+)\(", line)
        if not match:
            continue
        name = match[1]
        counts[name] = counts.get(name, 0) + 1
        # The first thing after the arguments are checked is the walk over the instruments' folder.
        started = started or (name == "openat" and f'"{stage.input}/"' in line)
        if started and name not in PASSED_OVER:
            reports = name == "write" and line.split("(", 1)[1].startswith("1,")
            calls.append((name, counts[name], reports))
    assert calls, "the walk over the instruments' folder was not seen"
    shutil.rmtree(show)
    return calls


def faults_of(stage, name, number, error, reports):
    """What one run with one failing call broke."""
    show = stage.show(f"{name}-{number}-{error}")
    prior = scene.contents(show)
    words = ["strace", "-f", "-qq", "-o", os.devnull, "-e", f"trace={name}",
             "-e", f"inject={name}:error={error}:when={number}", *stage.command(show)]
    try:
        result = scene.run(words, stage.folder)
    except subprocess.TimeoutExpired:
        return [f"{name} #{number} {error}: no end"]
    faults = []
    if result.returncode != 0 and not ended_at_state_name(result):
        faults.append(f"ended with {result.returncode}: {result.stderr.decode()[-200:]}")
    if result.returncode == 0 and not reports:
        faults += scene.line_faults(result.stdout, show, stage.instruments)
    after = scene.contents(show)
    faults += [f"{path} changed" for path, data in prior.items() if after.get(path) != data]
    faults += [f"{path} is half" for path in scene.files_not_sound(show / "samples", stage.originals)]
    shutil.rmtree(show)
    return [f"{name} #{number} {error}: {fault}" for fault in faults]


def ended_at_state_name(result):
    """Whether the run ended at the one place where it may: a state's name that cannot be tested."""
    return b"filesystem error: " in result.stderr and b".aupreset]" in result.stderr


class FaultTable(unittest.TestCase):
    def test_every_call_may_fail(self):
        with tempfile.TemporaryDirectory() as folder:
            stage = Stage(Path(folder).resolve())
            calls = calls_of(stage)
            cells = {}
            with ThreadPoolExecutor(os.cpu_count()) as pool:
                for name, number, reports in calls:
                    for error in ERRORS:
                        cells.setdefault((name, error), []).append(
                            pool.submit(faults_of, stage, name, number, error, reports))
            self.show(cells)
            faults = [fault for runs in cells.values() for run in runs for fault in run.result()]
            self.assertEqual(faults, [], "\n" + "\n".join(faults))

    def show(self, cells):
        """Prints the table: how many runs held of how many."""
        names = sorted({name for name, _ in cells})
        print(f"\n{'call':<20}" + "".join(f"{error:>10}" for error in ERRORS))
        for name in names:
            row = [[not run.result() for run in cells[name, error]] for error in ERRORS]
            print(f"{name:<20}" + "".join(f"{f'{sum(held)}/{len(held)}':>10}" for held in row))
        print(f"{sum(len(runs) for runs in cells.values())} runs", flush=True)


if __name__ == "__main__":
    TOOL = scene.tool_from_environment()
    if not shutil.which("strace"):
        sys.exit("strace is not here")
    unittest.main(verbosity=2)
