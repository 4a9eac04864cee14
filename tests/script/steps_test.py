#!/usr/bin/env python3
"""script/steps.sh, which runs the steps of script/test, tested with steps defined here."""

import os
import re
import subprocess
import unittest

from lumo_testing import PROJECT, WITHOUT_PROC, FolderTest, can_run

SCRIPTS = PROJECT / "script"
CTEST_FILE = """
add_test(fine true)
add_test(needs_a_disk false)
set_tests_properties(needs_a_disk PROPERTIES SKIP_RETURN_CODE 1)
"""


class Steps(FolderTest):
    def setUp(self):
        super().setUp()
        self.allowed = self.folder / "allowed"
        self.allowed.write_text("")

    def run_steps(self, ci=False, before=(), **steps):
        """Runs steps given as NAME="body", with the words of `before` put before the command;
        returns their status and output."""
        script = self.folder / "run"
        functions = "\n".join(f"step_{name}() {{\n{body}\n}}" for name, body in steps.items())
        script.write_text(f". {SCRIPTS}/common.sh\n. {SCRIPTS}/steps.sh\n"
                          f"logs={self.folder}\nallowed_skips={self.allowed}\n"
                          f"{functions}\nrun_steps {' '.join(steps)}\n")
        environment = {name: value for name, value in os.environ.items() if name != "CI"}
        if ci:
            environment["CI"] = "true"
        result = subprocess.run([*before, "bash", script], cwd=self.folder, env=environment,
                                text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                check=False)
        return result.returncode, result.stdout

    def test_steps_that_hold(self):
        status, output = self.run_steps(one="echo said", two="true")
        self.assertEqual(status, 0, output)
        self.assertIn("== one held", output)
        self.assertTrue(output.endswith("== everything held\n"), output)
        self.assertEqual((self.folder / "one.log").read_text(), "said\n")

    def test_a_failed_step_is_reported_and_the_others_run(self):
        status, output = self.run_steps(bad="echo why; false; echo unreached", good="true")
        self.assertEqual(status, 1)
        self.assertIn("why\n== bad FAILED", output)
        self.assertNotIn("unreached", output)
        self.assertIn("== good held", output)
        self.assertTrue(output.endswith("== FAILED:\n   bad\n"), output)

    def test_a_failed_step_that_prints_nothing_is_reported(self):
        for body in ("false", "exit 3", "echo '[1/2] Building CXX object'; false"):
            with self.subTest(body):
                status, output = self.run_steps(quiet=body, good="true")
                self.assertEqual(status, 1)
                self.assertIn("== quiet\n== quiet FAILED", output)
                self.assertIn("== good held", output)

    def test_a_skipped_step_gives_its_reason_and_is_listed(self):
        status, output = self.run_steps(absent="echo there is no network; exit 77")
        self.assertEqual(status, 0, output)
        self.assertIn("== absent was skipped: there is no network\n", output)
        status, output = self.run_steps(absent="echo script/x: skipped: no network; exit 77")
        self.assertIn("== absent was skipped: no network\n", output)
        self.assertIn("== skipped: 1\n   step absent\n", output)

    @unittest.skipUnless(can_run([*WITHOUT_PROC, "true"]), "only root can unmount /proc")
    def test_without_proc_steps_run_and_skips_are_listed(self):
        (self.folder / "CTestTestfile.cmake").write_text(CTEST_FILE)
        status, output = self.run_steps(before=WITHOUT_PROC, dev="ctest", absent="exit 77")
        self.assertEqual(status, 0, output)
        self.assertIn("== skipped: 2\n   needs_a_disk\n   step absent\n== times\n", output)

    def test_in_ci_a_skipped_step_must_be_listed(self):
        status, output = self.run_steps(ci=True, absent="exit 77")
        self.assertEqual(status, 1)
        self.assertTrue(output.endswith("== FAILED:\n   step absent (skipped)\n"), output)
        self.allowed.write_text("# a reason\nstep abs*  # and another\n")
        self.assertEqual(self.run_steps(ci=True, absent="exit 77")[0], 0)

    def test_skipped_tests_are_listed_and_in_ci_must_be_allowed(self):
        (self.folder / "CTestTestfile.cmake").write_text(CTEST_FILE)
        status, output = self.run_steps(dev="ctest")
        self.assertEqual(status, 0, output)
        self.assertIn("== skipped: 1\n   needs_a_disk\n", output)
        status, output = self.run_steps(ci=True, dev="ctest")
        self.assertEqual(status, 1)
        self.assertTrue(output.endswith("== FAILED:\n   needs_a_disk (skipped)\n"), output)
        self.allowed.write_text("needs_*\n")
        self.assertEqual(self.run_steps(ci=True, dev="ctest")[0], 0)

    def test_the_last_lines_give_each_time_and_the_sum(self):
        _, output = self.run_steps(one="sleep 0.2", two="false", three="exit 77")
        rows = re.findall(r"^   (\w+) +(held|FAILED|skipped|) +([0-9.]+) s +([0-9.]+) s of",
                          output, re.MULTILINE)
        self.assertEqual([(name, outcome) for name, outcome, _, _ in rows],
                         [("one", "held"), ("two", "FAILED"), ("three", "skipped"), ("all", "")])
        for column in (2, 3):
            times = [float(row[column]) for row in rows]
            self.assertAlmostEqual(sum(times[:-1]), times[-1], delta=0.2)  # they are rounded
        self.assertGreaterEqual(float(rows[0][2]), 0.2)


if __name__ == "__main__":
    unittest.main(verbosity=2)
