#!/usr/bin/env python3
"""The status line of lumo-import-library on a real pseudo-terminal."""

import os
import re
import signal
import subprocess
import time
import unittest

from library_scene import LibraryTest
from lumo_testing import HANG_SECONDS, require_terminals
from screen import Terminal


class StatusLine(LibraryTest):
    def setUp(self):
        require_terminals()
        super().setUp()

    def start(self, width=80, errors=None, environment=None, output=False, **plan):
        """Starts the program with a tool that imports one instrument for each byte that `steps`
        gets; its standard error is a terminal, and with `output` its standard output, too."""
        here = self.use_fake_tool(**plan)
        os.mkfifo(here / "steps")
        self.terminal = Terminal(width)
        settings = {"TERM": "xterm", "LC_ALL": "C.UTF-8", "PATH": os.environ["PATH"],
                    **(environment or {})}
        self.process = subprocess.Popen(
            self.words("lib"), cwd=self.folder, stdin=subprocess.DEVNULL,
            stdout=self.terminal.slave if output else subprocess.PIPE,
            stderr=errors or self.terminal.slave,
            env={name: value for name, value in settings.items() if value is not None})
        self.addCleanup(self.process.kill)
        self.steps = open(here / "steps", "wb", buffering=0)
        self.addCleanup(self.steps.close)

    def step(self, count=1):
        self.steps.write(b"x" * count)

    def expect_line(self, pattern):
        self.wait_until(lambda: re.fullmatch(pattern, self.terminal.last_line()),
                        f"{pattern}, but {self.terminal.last_line()!r}")

    def finish(self, left, status=0):
        """Lets the program import the rest; returns its standard output."""
        self.step(left)
        out, err = self.process.communicate(timeout=HANG_SECONDS)
        self.assertEqual(self.process.returncode, status, (out, err))
        self.terminal.close()
        self.assertEqual(self.terminal.screen.unknown, [])
        self.errors = err
        return out

    def test_says_what_is_done_failed_copied_left_and_at_hand(self):
        self.make(*[f"Strings {i}.exs" for i in range(10)])
        self.start(200, **{"Strings_1": "fail no"})
        self.expect_line("0 of 10, 0 failed, 0 bytes copied: Strings 0")
        self.step()
        self.expect_line(r"1 of 10, 0 failed, 1\.0 kB copied, [0-9.a-z ]+ left: Strings 1")
        self.step()
        self.expect_line(r"2 of 10, 1 failed, 2\.0 kB copied, [0-9.a-z ]+ left: Strings 2")
        self.assertTrue(self.terminal.screen.colours)
        self.step(6)
        self.expect_line(r"8 of 10, 1 failed, 8\.0 kB copied, [0-9.a-z ]+ left: Strings 8")
        out = self.finish(2, status=2)
        self.assertEqual(self.terminal.screen.rows(), [])
        self.assertIn(b"10 instruments: 9 imported, 1 failed", out)

    def test_has_no_name_after_the_last_instrument(self):
        self.make("a.exs", "b.exs")
        stay = self.use_fake_tool() / "stay"
        stay.touch()
        self.start(200)
        self.step(2)
        self.expect_line(r"2 of 2, 0 failed, 2\.0 kB copied, 0\.0 s left")
        stay.unlink()
        self.finish(0)

    def test_is_away_before_the_summary_is_printed(self):
        self.make("a.exs", "b.exs")
        self.start(80, output=True)
        self.step()
        self.expect_line("1 of 2.*")
        self.finish(1)
        rows = self.terminal.screen.rows()
        self.assertEqual(rows[:2], ["2 instruments in 1 folder",
                                    "2 instruments: 2 imported, 0 failed"])

    def test_fits_narrow_terminals(self):
        for width, pattern in ((20, "1 of 3, 0 failed"), (80, r"1 of 3.*left: A long name.*")):
            with self.subTest(width):
                self.make(*[f"A long name for an instrument, number {i}.exs" for i in range(3)])
                self.start(width)
                self.step()
                self.expect_line(pattern)
                self.assertLess(len(self.terminal.last_line()), width)
                self.finish(2)
                self.assertEqual(self.terminal.screen.rows(), [])
                os.remove(self.folder / "programs/steps")

    def test_takes_80_columns_where_the_terminal_does_not_say(self):
        self.make(f"{'A long name ' * 12}.exs")
        self.start(0)
        self.expect_line("0 of 1, .*\u2026")
        self.assertEqual(len(self.terminal.last_line()), 79)
        self.finish(1)

    def test_fits_wide_characters(self):
        name = "\u5f26\u697d" * 20
        self.make(f"{name}.exs")
        self.start(60)
        self.expect_line("0 of 1, 0 failed, 0 bytes copied: [\u5f26\u697d]{12}\u2026")
        self.finish(1)

    def test_survives_a_change_of_width(self):
        self.make(*[f"A long name for an instrument, number {i}.exs" for i in range(4)])
        self.start(120)
        self.step()
        self.expect_line("1 of 4.*number 1")
        self.assertGreater(len(self.terminal.last_line()), 60)
        self.terminal.resize(30)  # the line now takes several rows
        self.step()
        self.expect_line("2 of 4, 0 failed")
        self.assertEqual(len(self.terminal.screen.rows()), 1)
        self.terminal.resize(120)
        self.step()
        self.expect_line("3 of 4.*number 3")
        self.assertEqual(len(self.terminal.screen.rows()), 1)
        self.terminal.resize(20)
        self.finish(1)
        self.assertEqual(self.terminal.screen.rows(), [])

    def test_is_redrawn_at_most_ten_times_a_second(self):
        self.make(*[f"{i:04}.exs" for i in range(2000)])
        began = time.monotonic()
        self.start(80)
        self.finish(2000)
        taken = time.monotonic() - began
        self.assertGreater(self.terminal.screen.drawings, 0)
        self.assertLessEqual(self.terminal.screen.drawings, 10 * taken + 3)

    def test_is_not_redrawn_more_often_among_many_messages(self):
        self.make(*[f"{i:04}.exs" for i in range(1000)])
        began = time.monotonic()
        self.start(80, **{"*": "stderr beware"})
        self.step(999)
        self.expect_line("999 of 1,000.*")
        self.finish(1)
        taken = time.monotonic() - began
        self.assertEqual(self.terminal.screen.rows(), ["lumo-exs-import: beware"] * 1000)
        drawings = self.terminal.written.count(b" of 1,000")
        self.assertGreater(drawings, 0)
        self.assertLessEqual(drawings, 10 * taken + 3)

    def test_counts_during_the_walk(self):
        self.make("a/1.exs", "b/2.exs")
        self.start(80)
        self.expect_line("0 of 2.*")
        self.finish(2)
        # Drawn, then removed before anything else is printed.
        self.assertRegex(self.terminal.written,
                         rb"\rlooking for instruments: [^\r]*\x1b\[J\r\r\x1b\[J")

    def test_keeps_the_tools_own_errors_off_the_line(self):
        self.make("a.exs", "b.exs", "c.exs")
        self.start(80, b="stderr beware of \x1b[2Jthis")
        self.step(2)
        self.expect_line("2 of 3.*: c")
        self.finish(1)
        self.assertEqual(self.terminal.screen.rows(),
                         ["lumo-exs-import: beware of \\x1b[2Jthis"])

    def test_is_away_when_the_tool_ends_early(self):
        self.make("a.exs", "b.exs", "c.exs")
        self.start(80, b="signal 9")
        self.expect_line("0 of 3.*: a")
        self.finish(3, status=2)
        self.assertEqual(self.terminal.screen.rows(),
                         ["lumo-import-library: lumo-exs-import ended at lib/b.exs: signal 9 "
                          f"({signal.strsignal(9)})"])

    def test_has_no_colours_where_none_are_wanted(self):
        self.make("a.exs", "b.exs")
        self.start(80, environment={"NO_COLOR": "1"}, a="fail no")
        self.step()
        self.expect_line("1 of 2, 1 failed.*")
        self.finish(1, status=2)
        self.assertFalse(self.terminal.screen.colours)

    def test_is_absent_on_a_terminal_that_cannot_draw(self):
        for environment in ({"TERM": "dumb"}, {"TERM": None}):
            with self.subTest(environment):
                self.make("a.exs")
                self.start(80, environment=environment)
                self.finish(1)
                self.assertEqual(self.terminal.written, b"")
                os.remove(self.folder / "programs/steps")

    def test_is_absent_where_there_is_no_terminal(self):
        self.make("a.exs")
        self.start(errors=subprocess.PIPE)
        self.finish(1)
        self.assertEqual((self.errors, self.terminal.written), (b"", b""))


if __name__ == "__main__":
    unittest.main()
