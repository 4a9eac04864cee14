#!/usr/bin/env python3
"""Eight processes import fifty instruments each into one show, all with the same samples: every
line is ok, the show has each sample once, and all states are distinct."""

import json
import subprocess
import unittest
from pathlib import Path

from lumo_testing import (FolderTest, built_program, contents, import_command, state_faults,
                          write_preset, write_wave)

TOOL = built_program("LUMO_TOOL")
PROCESSES, IMPORTS, SAMPLES = 8, 50, 12


class ManyProcesses(FolderTest):
    def test_all_imports_into_one_show_succeed(self):
        kit = self.folder / "Kit"
        for i in range(SAMPLES):
            write_wave(kit / f"{i}.wav", 2000 + i, i)
        samples = {path.name: path.read_bytes() for path in kit.iterdir()}
        instrument = write_preset(self.folder / "Kit.aupreset", sorted(kit.iterdir()))
        words = import_command(TOOL, self.show, [instrument] * IMPORTS)
        running = [subprocess.Popen(words, stdout=subprocess.PIPE) for _ in range(PROCESSES)]
        reports = [json.loads(line) for process in running
                   for line in process.communicate()[0].splitlines()]
        self.assertEqual([process.returncode for process in running], [0] * PROCESSES)

        total = PROCESSES * IMPORTS
        failed = [report["error"] for report in reports if not report["ok"]]
        states = {report["stateFile"] for report in reports}
        placed = {path.name: data for path, data in contents(self.show / "samples").items()}
        print(f"\n{len(reports)} imports: {len(failed)} failed, {len(placed)} samples, "
              f"{len(states)} states", flush=True)
        self.assertEqual((len(reports), failed), (total, []))
        self.assertEqual(placed, samples)
        self.assertEqual(len(states), total)
        self.assertEqual(len(list((self.show / "states").iterdir())), total)
        faults = [fault for state in states for fault in state_faults(Path(state), self.show)]
        self.assertEqual(faults, [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
