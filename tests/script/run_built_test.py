#!/usr/bin/env python3
"""script/import and script/import-library, tested with a script/setup and a cmake that only log
their arguments: when a program is built, and how it is run."""

import os
import shutil
import unittest

from lumo_testing import PROJECT, FolderTest, run

SCRIPTS = PROJECT / "script"
SETUP = """#!/bin/sh
echo "setup $*" >>"$LOG"
echo on standard output
"""
CMAKE = """#!/bin/sh
echo "cmake $*" >>"$LOG"
[ -z "$FAIL" ] || { echo "it went wrong" >&2; exit 1; }
[ "$1" = --build ] || exit 0
mkdir -p "$2/bin"
for name in lumo-exs-import lumo-import-library; do
    printf '#!/bin/sh\\necho "$0: $*"; pwd; exit 7\\n' >"$2/bin/$name"
    chmod +x "$2/bin/$name"
done
"""
# Script: its program, the preset it is built with and the packages it needs.
PROGRAMS = {"import": ("lumo-exs-import", "tool", "build"),
            "import-library": ("lumo-import-library", "release", "library")}


class RunBuilt(FolderTest):
    def setUp(self):
        super().setUp()
        self.project = self.folder / "project"
        for name in ("base", "cmake", "exs", "library", "packaging", "platform", "relink",
                     "tools/exs-import", "tools/import-library", "bin"):
            (self.project / name).mkdir(parents=True)
        for name in ("CMakeLists.txt", "CMakePresets.json", "tools/import-library/page.js"):
            (self.project / name).touch()
        (self.project / "script").mkdir()
        for name in ("import", "import-library", "run-built.sh", "common.sh"):
            shutil.copy(SCRIPTS / name, self.project / "script")
        for path, text in (("script/setup", SETUP), ("bin/cmake", CMAKE)):
            (self.project / path).write_text(text)
            (self.project / path).chmod(0o755)

    def run_script(self, script, *words, fail=""):
        """Runs a script in another folder; returns its result and the logged calls."""
        log = self.folder / "log"
        log.write_text("")
        done = run([self.project / "script" / script, *words], cwd=self.folder, text=True,
                   env={"PATH": f"{self.project}/bin:{os.environ['PATH']}", "LOG": str(log),
                        "FAIL": fail})
        return done, log.read_text().splitlines()

    def test_builds_what_is_missing_and_runs_it_where_it_is_called(self):
        for script, (program, preset, packages) in PROGRAMS.items():
            with self.subTest(script):
                done, asked = self.run_script(script, "--package", "a b")
                built = f"{self.project}/build/{preset}"
                self.assertEqual(done.returncode, 7)
                self.assertEqual(done.stdout, f"{built}/bin/{program}: --package a b\n"
                                              f"{self.folder}\n")
                self.assertEqual(done.stderr, f"script/{script}: building {program}, which takes a "
                                              "minute or two (log: "
                                              f"{self.project}/build/{script}.log)\n")
                self.assertEqual(asked, [f"setup {packages}", f"cmake --preset {preset}",
                                         f"cmake --build {built}"])
                done, asked = self.run_script(script)
                self.assertEqual((done.returncode, done.stderr, asked), (7, "", []))

    def test_builds_again_what_has_changed(self):
        for script in PROGRAMS:
            self.run_script(script)
        stamp = (self.project / "build/import-library.stamp").stat().st_mtime
        os.utime(self.project / "tools/import-library/page.js", (stamp + 10, stamp + 10))
        self.assertEqual(self.run_script("import")[1], [])  # not built again
        self.assertEqual(len(self.run_script("import-library")[1]), 3)

    def test_says_why_it_could_not_be_built(self):
        for script, (program, *_) in PROGRAMS.items():
            done, _ = self.run_script(script, fail="yes")
            self.assertEqual((done.returncode, done.stdout), (1, ""))
            self.assertIn(f"building {program}", done.stderr)
            self.assertIn("it went wrong\n", done.stderr)
            self.assertTrue(done.stderr.endswith(
                f"the build failed; the whole log: {self.project}/build/{script}.log\n"))


if __name__ == "__main__":
    unittest.main()
