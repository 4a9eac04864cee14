#!/usr/bin/env python3
"""Eight processes import fifty instruments each into one show, all with the same samples: every
line is ok, the show has each sample once, and all states are distinct."""

import json
import subprocess
import tempfile
import unittest
from pathlib import Path

import scene

PROCESSES, IMPORTS, SAMPLES = 8, 50, 12


class ManyProcesses(unittest.TestCase):
    def test_all_imports_into_one_show_succeed(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name).resolve()
            for i in range(SAMPLES):
                scene.write_wave(folder / "Kit" / f"{i}.wav", 2000 + i, i)
            samples = {path.name: path.read_bytes() for path in (folder / "Kit").iterdir()}
            instrument = folder / "Kit.aupreset"
            scene.write_preset(instrument, [folder / "Kit" / name for name in sorted(samples)])
            show = folder / "Show.lumo"
            words = scene.command(TOOL, show, show / "states", [instrument] * IMPORTS)
            running = [subprocess.Popen(words, stdout=subprocess.PIPE) for _ in range(PROCESSES)]
            reports = [json.loads(line) for process in running
                       for line in process.communicate()[0].splitlines()]
            self.assertEqual([process.returncode for process in running], [0] * PROCESSES)

            total = PROCESSES * IMPORTS
            failed = [report["error"] for report in reports if not report["ok"]]
            states = {report["stateFile"] for report in reports}
            placed = {path.name: data for path, data in scene.contents(show / "samples").items()}
            print(f"\n{len(reports)} imports: {len(failed)} failed, {len(placed)} samples, "
                  f"{len(states)} states", flush=True)
            self.assertEqual((len(reports), failed), (total, []))
            self.assertEqual(placed, samples)
            self.assertEqual(len(states), total)
            self.assertEqual(len(list((show / "states").iterdir())), total)
            faults = [fault for state in states for fault in scene.state_faults(Path(state), show)]
            self.assertEqual(faults, [])


if __name__ == "__main__":
    TOOL = scene.tool_from_environment()
    unittest.main(verbosity=2)
