#!/usr/bin/env python3
"""Small Mac programs under macos-run: C, C++ and the calling conventions of each processor.

usage: programs_test.py RUNNER ARCHITECTURE BUILD_ROOT LLVM
"""

import errno
import fcntl
import os
import platform
import pty
import struct
import subprocess
import sys
import termios
import unittest
from pathlib import Path

from lumo_testing import FolderTest, run

PROGRAMS = Path(__file__).resolve().parent / "programs"


class Programs(FolderTest):
    def compile(self, source, *options):
        """Compiles a program; any message of the compiler fails the test."""
        target = ["-target", f"{ARCHITECTURE}-apple-macos13.0", "-isysroot", ROOT]
        words = [f"{LLVM}/bin/clang", *target, PROGRAMS / source, *options]
        if source.endswith(".cpp"):
            words[0] = f"{LLVM}/bin/clang++"
            words += ["-std=c++20", "-stdlib++-isystem", f"{ROOT}/usr/include/c++/v1"]
        made = run(words, text=True)
        self.assertEqual((made.returncode, made.stderr), (0, ""))

    def build(self, source, *options):
        program = self.folder / "program"
        self.compile(source, "-fuse-ld=lld", "-o", program, *options)
        return program

    def run_program(self, program, *arguments):
        return run([RUNNER, program, *arguments], text=True)

    def test_constants_and_layouts_are_those_of_the_macs_headers(self):
        self.compile("layout.c", "-fsyntax-only")

    def test_a_c_program_runs(self):
        result = self.run_program(self.build("hello.c"), "one", "two")
        self.assertEqual((result.returncode, result.stderr), (7, ""))
        self.assertEqual(result.stdout.splitlines(), [
            "hello from program, 3 arguments, environment and apple",
            "stat: 0, size good",
            "mode 100000",
            "open: -1 errno 2 No such file or directory",
            "long: -1, ENAMETOOLONG is 63"])

    def test_signals_processes_and_terminals_are_the_macs(self):
        terminal, its_program_side = pty.openpty()
        self.addCleanup(os.close, terminal)
        self.addCleanup(os.close, its_program_side)
        fcntl.ioctl(its_program_side, termios.TIOCSWINSZ, struct.pack("4H", 24, 123, 0, 0))
        program = self.build("processes.c")
        result = subprocess.run([RUNNER, f"./{program.name}"], cwd=self.folder, text=True,
                                check=False, stdout=subprocess.PIPE, stderr=its_program_side,
                                env=os.environ | {"LC_ALL": "C.UTF-8", "TZ": "UTC"})
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout.splitlines(), [
            "path: 1, 0, 1",
            "child: 1, by signal 10",
            "child: 1, by signal 9",
            "stopped: 1, by signal 17",
            "exited: 1, status 5",
            "caught 2: default before 1, handler 1, flags 6, mask 40000000, default after 1",
            "caught 30: default before 1, handler 1, flags 6, mask 40000000, default after 1",
            "caught 20: default before 1, handler 1, flags 6, mask 40000000, default after 1",
            "User defined signal 1, no signal: 0",
            "terminal: 1, 0, 123 columns",
            "widths: 6, 2, 0, -1",
            "1970-01-02 00:00, 1"])

    def check_passes(self, source):
        for level in (0, 1, 2):
            with self.subTest(optimised=level):
                program = self.build(source, f"-O{level}", "-framework", "CoreFoundation")
                result = self.run_program(program)
                self.assertEqual((result.stdout, result.stderr), ("all passed\n", ""))
                self.assertEqual(result.returncode, 0)

    def test_exceptions_streams_files_and_threads_work(self):
        self.check_passes("cpp.cpp")

    def test_what_the_systems_pass_differently_arrives(self):
        self.check_passes("abi.cpp")

    def check_gives_up(self, word, message, *before):
        words = [*before, RUNNER, self.build("unknown.c"), word]
        result = run(words, text=True)
        self.assertEqual((result.stderr, result.returncode), (f"macos-run: {message}\n", 99))

    def test_an_unknown_flag_is_named(self):
        self.check_gives_up("flag", "unknown here: O_ flags 32")
        self.check_gives_up("action", "unknown here: flags of sigaction 64")
        self.check_gives_up("request", f"unknown here: ioctl {0x20007461}")

    def test_an_unknown_error_number_is_named(self):
        if ARCHITECTURE != platform.machine():
            self.skipTest("a call of an emulated program cannot be made to fail")
        self.check_gives_up("folder", f"unknown here: error number {errno.ENOKEY}", "strace", "-qq",
                            "-o", os.devnull, "-e", "inject=mkdir:error=ENOKEY")

    def test_a_thread_that_would_wait_for_itself_is_reported(self):
        self.check_gives_up("mutex", "a thread waits for a mutex that it holds itself")

    def test_a_function_that_is_not_simulated_is_named(self):
        self.check_gives_up("function",
                            "a function that is not simulated was called: _getloadavg")


if __name__ == "__main__":
    RUNNER, ARCHITECTURE, ROOT, LLVM = sys.argv[1:5]
    unittest.main(argv=sys.argv[:1], verbosity=2)
