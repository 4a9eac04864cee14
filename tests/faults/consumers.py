#!/usr/bin/env python3
"""A consumer that closes its end, or an output on a full disk, damages no file."""

import os
import signal
import subprocess
import unittest

from lumo_testing import (HANG_SECONDS, FolderTest, built_program, import_command, state_faults,
                          write_preset, write_wave)

TOOL = built_program("LUMO_TOOL")


class Consumers(FolderTest):
    def setUp(self):
        super().setUp()
        write_wave(self.folder / "Kit" / "kick.wav", 500, 1)
        instrument = write_preset(self.folder / "Kit.aupreset", [self.folder / "Kit" / "kick.wav"])
        self.words = import_command(TOOL, self.show, [instrument] * 3)

    def states_that_are_whole(self):
        """Checks every state and returns their number."""
        states = sorted((self.show / "states").iterdir())
        for state in states:
            self.assertEqual(state_faults(state, self.show), [])
        return len(states)

    def test_a_closed_output_ends_the_run_by_its_signal(self):
        reading, writing = os.pipe()
        os.close(reading)
        process = subprocess.Popen(self.words, stdout=writing, restore_signals=True)
        os.close(writing)
        self.assertEqual(process.wait(timeout=HANG_SECONDS), -signal.SIGPIPE)
        self.assertEqual(self.states_that_are_whole(), 1)

    def test_a_full_output_is_passed_over(self):
        with open("/dev/full", "wb") as full:
            self.assertEqual(subprocess.run(self.words, stdout=full, check=False).returncode, 0)
        self.assertEqual(self.states_that_are_whole(), 3)


if __name__ == "__main__":
    unittest.main(verbosity=2)
