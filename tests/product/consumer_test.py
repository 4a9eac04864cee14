#!/usr/bin/env python3
"""Tests of examples/consume/consume.py, to which docs/consuming.md refers."""

import os
import sys
import unittest

from lumo_testing import PROJECT, GlassTest, built_program, preset_with_samples, run

TOOL = built_program("LUMO_TOOL")
CONSUME = PROJECT / "examples/consume/consume.py"


class Consumer(GlassTest):
    def consume(self, *instruments, tool=TOOL):
        return run([sys.executable, CONSUME, tool, self.show, self.states, self.glass,
                    *instruments])

    def test_prints_what_was_imported(self):
        done = self.consume(self.glass / "Glass.aupreset")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stdout.decode(),
                         "Glass: 3 samples, 3 zones, 75102 bytes copied, "
                         f"state {self.states}/Glass.aupreset\n")

    def test_prints_what_was_not_found(self):
        gone = preset_with_samples(self.folder / "Gone.aupreset", ["/gone/a.wav", "/gone/b.wav"])
        done = self.consume(gone, self.glass / "Glass.aupreset")
        self.assertEqual(done.returncode, 1, done.stderr)
        lines = done.stdout.decode().split("\n")
        self.assertEqual(lines[:3], ["Gone: a sample wasn't found: a.wav",
                                     "  not found: /gone/a.wav", "  not found: /gone/b.wav"])
        self.assertTrue(lines[3].startswith("Glass: 3 samples"), lines)

    def test_prints_names_that_are_not_utf8(self):
        done = self.consume(os.fsdecode(b"\xff.txt"))
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertIn("not an EXS instrument", done.stdout.decode())

    def test_notices_a_run_that_ended_early(self):
        done = self.consume("a.exs", tool="true")
        self.assertEqual(done.returncode, 1)
        self.assertIn("the run ended early: 0 of 1 lines", done.stderr.decode())


if __name__ == "__main__":
    unittest.main()
