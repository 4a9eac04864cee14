#!/usr/bin/env python3
"""Makes every system call of a run fail in turn, with each of several errors, and prints a table.

A run imports an EXS instrument and a preset, with a sample that moved and a name that is taken.
Each cell is a call and an error: for every time that the run makes this call after its arguments
are checked, one run in which only that call fails. A cell passes when each run ends normally with
one correct line per instrument, every earlier file is byte-identical, and every sample in the show
is complete. Where the write of a report line fails, the lines of that run are not checked.
"""

import os
import re
import shutil
import subprocess
import unittest
from concurrent.futures import ThreadPoolExecutor

from lumo_testing import FolderTest, built_program, contents, incomplete_files, line_faults
from traced_import import Stage, can_trace

TOOL = built_program("LUMO_TOOL")
ERRORS = ("EIO", "ENOSPC", "EACCES", "EMFILE", "EINTR")
CANNOT_FAIL = {"exit", "exit_group"}


def faults_of(stage, call, error):
    """The faults of one run with one failing call."""
    show = stage.show(f"{call.name}-{call.number}-{error}")
    prior = contents(show)
    try:
        result = stage.run_with_fault(show, call, f"error={error}")
    except subprocess.TimeoutExpired:
        return [f"{call} {error}: no end"]
    faults = []
    if result.returncode != 0 and not ended_at_state_name(result):
        faults.append(f"ended with {result.returncode}: {result.stderr.decode()[-200:]}")
    if result.returncode == 0 and not call.is_report:
        faults += line_faults(result.stdout, show, stage.instruments)
    after = contents(show)
    faults += [f"{path} changed" for path, data in prior.items() if after.get(path) != data]
    half = incomplete_files(show / "samples", stage.originals)
    faults += [f"{path} is half" for path in half]
    shutil.rmtree(show)
    return [f"{call} {error}: {fault}" for fault in faults]


def ended_at_state_name(result):
    """Whether the run ended because the check for an unused state name failed, the only call that
    may end it."""
    return (b"filesystem error: " in result.stderr and
            re.search(rb'\.aupreset"?\]', result.stderr) is not None)  # libc++ quotes paths


class FaultTable(FolderTest):
    @unittest.skipUnless(can_trace(), "strace cannot be used here")
    def test_every_call_may_fail(self):
        stage = Stage(TOOL, self.folder)
        calls = [call for call in stage.calls() if call.name not in CANNOT_FAIL]
        cells = {}
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            for call in calls:
                for error in ERRORS:
                    cells.setdefault((call.name, error), []).append(
                        pool.submit(faults_of, stage, call, error))
        self.print_table(cells)
        faults = [fault for runs in cells.values() for run in runs for fault in run.result()]
        self.assertEqual(faults, [], "\n" + "\n".join(faults))

    def print_table(self, cells):
        """Prints the table: for each cell the number of runs that passed, and of all runs."""
        names = sorted({name for name, _ in cells})
        print(f"\n{'call':<20}" + "".join(f"{error:>10}" for error in ERRORS))
        for name in names:
            row = [[not run.result() for run in cells[name, error]] for error in ERRORS]
            print(f"{name:<20}" + "".join(f"{f'{sum(held)}/{len(held)}':>10}" for held in row))
        print(f"{sum(len(runs) for runs in cells.values())} runs", flush=True)


if __name__ == "__main__":
    unittest.main(verbosity=2)
