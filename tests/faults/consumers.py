#!/usr/bin/env python3
"""A consumer that closes its end, or whose disk is full, damages nothing."""

import os
import signal
import subprocess
import tempfile
import unittest
from pathlib import Path

import scene


class Consumers(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name).resolve()
        scene.write_wave(self.folder / "Kit" / "kick.wav", 500, 1)
        instrument = self.folder / "Kit.aupreset"
        scene.write_preset(instrument, [self.folder / "Kit" / "kick.wav"])
        self.show = self.folder / "Show.lumo"
        self.words = scene.command(TOOL, self.show, self.show / "states", [instrument] * 3)

    def states_that_are_whole(self):
        """Checks every state and returns their number."""
        states = sorted((self.show / "states").iterdir())
        for state in states:
            self.assertEqual(scene.state_faults(state, self.show), [])
        return len(states)

    def test_a_closed_output_ends_the_run_by_its_signal(self):
        reading, writing = os.pipe()
        os.close(reading)
        process = subprocess.Popen(self.words, stdout=writing, restore_signals=True)
        os.close(writing)
        self.assertEqual(process.wait(timeout=scene.HANG_SECONDS), -signal.SIGPIPE)
        self.assertEqual(self.states_that_are_whole(), 1)

    def test_a_full_output_is_passed_over(self):
        with open("/dev/full", "wb") as full:
            self.assertEqual(subprocess.run(self.words, stdout=full, check=False).returncode, 0)
        self.assertEqual(self.states_that_are_whole(), 3)


if __name__ == "__main__":
    TOOL = scene.tool_from_environment()
    unittest.main(verbosity=2)
