#!/usr/bin/env python3
"""Checks that the tests of the interposed functions detect mistakes: the Mac's library is built
with one mistake at a time, and its tests, run by macos-run, must fail.

usage: mutants_test.py RUNNER BUILD_FOLDER       (of a preset macos-tests-*, already built)
"""

import os
import re
import subprocess
import sys
import unittest
from pathlib import Path

from lumo_testing import PROJECT, run

LIBRARY = "liblumo-relink.dylib"
SHIMS, REDIRECT = "interpose_macos.cpp", "redirect.h"


class Mutants(unittest.TestCase):
    def setUp(self):
        # The same folder in each run, so that a compiler cache is effective.
        self.folder = Path(BUILD) / "mutants" / self.id().split(".")[-1]
        self.folder.mkdir(parents=True, exist_ok=True)
        for name in (SHIMS, REDIRECT):
            (self.folder / name).write_bytes((PROJECT / "relink" / name).read_bytes())

    def change(self, name, old, new):
        text = (self.folder / name).read_text()
        self.assertEqual(text.count(old), 1, f"{name} has not one {old!r}")
        (self.folder / name).write_text(text.replace(old, new))

    def build(self):
        """Builds the library from the folder's sources, into the folder."""
        commands = subprocess.run(["ninja", "-C", BUILD, "-t", "commands", f"bin/{LIBRARY}"],
                                  check=True, capture_output=True, text=True).stdout.splitlines()
        compiling, = [one for one in commands if one.endswith(f"-c {PROJECT}/relink/{SHIMS}")]
        compiling = re.sub(r" -M[DTF]\b( \S+\.o(\.d)?)?", "", compiling)
        compiling, count = re.subn(r"-o (\S+) -c \S+", f"-o {self.folder}/shims.o -c "
                                   f"{self.folder}/{SHIMS}", compiling)
        self.assertEqual(count, 1)
        linking = commands[-1].removeprefix(": && ").removesuffix(" && :")
        linking = linking.replace(f"-o bin/{LIBRARY}", f"-o {self.folder}/{LIBRARY}")
        linking, count = re.subn(rf"\S+/{SHIMS}\.o", f"{self.folder}/shims.o", linking)
        self.assertEqual(count, 1)
        for command in (compiling.replace("-Werror", "-w"), linking):
            subprocess.run(command, shell=True, cwd=BUILD, check=True)

    def failing(self, tests="*", **settings):
        """The tests that fail with the library in the folder; empty when all pass."""
        command = [RUNNER, f"{BUILD}/bin/relink_shims_test", f"--gtest_filter={tests}",
                   "--gtest_color=no"]
        environment = os.environ | settings | {"DYLD_LIBRARY_PATH": str(self.folder)}
        done = run(command, text=True, env=environment)
        failed = sorted(set(re.findall(r"^\[  FAILED  \] (\S+?\.\S+?),? .*ms\)$", done.stdout,
                                       re.MULTILINE)))
        if done.returncode != 0 and not failed:
            failed = [done.stderr.strip() or f"status {done.returncode}"]
        return failed

    def check_noticed(self, *tests, **settings):
        self.build()
        failing = self.failing(*tests, **settings)
        print(f"\n    {len(failing)} notice it, the first: {failing[:1]}", flush=True)
        self.assertNotEqual(failing, [])

    def test_without_a_mistake_all_pass(self):
        self.build()
        self.assertEqual(self.failing(), [])

    def test_stat_that_calls_lstat(self):
        self.change(SHIMS, "return stat(p, status);", "return lstat(p, status);")
        self.check_noticed()

    # open and open$NOCANCEL behave alike here; on a system without open, calling open fails.
    ONLY_OPEN_NOCANCEL = {"tests": "*TheShimOf.ReachesTheIndexedFile/open_nocancel",
                          "LUMO_MACOS_LACKS": ",_open,"}

    def test_open_nocancel_needs_no_open(self):
        self.build()
        self.assertEqual(self.failing(**self.ONLY_OPEN_NOCANCEL), [])

    def test_open_nocancel_that_calls_open(self):
        self.change(SHIMS, "return open_nocancel(p, flags, mode);", "return open(p, flags, mode);")
        self.build()
        self.assertNotEqual(self.failing(**self.ONLY_OPEN_NOCANCEL), [])

    def test_errno_lost_by_pathconf(self):
        self.change(SHIMS, "    if (errno == 0) {\n        errno = before;\n    }\n", "")
        self.check_noticed()

    def test_the_mode_dropped_by_openat(self):
        self.change(SHIMS, "return openat(f, p, flags, mode);", "return openat(f, p, flags, 0);")
        self.check_noticed()

    def test_the_guard_against_recursion_gone(self):
        self.change(REDIRECT, "inside.is_first() && ", "")
        self.check_noticed()

    def test_a_tuple_of_another_function(self):
        self.change(SHIMS, "LUMO_INTERPOSE(open_nocancel)\n",
                    '__attribute__((used, section("__DATA,__interpose"))) constinit const Pair '
                    "wrong{open_nocancel_shim, ::open};\n")
        self.check_noticed()

    def test_a_look_up_without_a_session(self):
        self.change(REDIRECT, "session::is_open() ? redirect_in_session(path, call, opens) : "
                    "call(path);", "redirect_in_session(path, call, opens);")
        self.check_noticed()


if __name__ == "__main__":
    RUNNER, BUILD = (os.path.abspath(path) for path in sys.argv[1:3])
    unittest.main(argv=sys.argv[:1], verbosity=2)
