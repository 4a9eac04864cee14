#!/usr/bin/env python3
"""The manual page made by the build: formatters accept it without a warning, and it describes all
options and keys."""

import json
import os
import re
import unittest
from pathlib import Path

from lumo_testing import PROJECT, built_program, run

TOOL = built_program("LUMO_TOOL")
PAGE = Path(os.environ["LUMO_MANUAL_PAGE"])


def shown():
    """The page as plain text, 200 columns wide."""
    environment = dict(os.environ, MANWIDTH="200", LC_ALL="C.UTF-8")
    text = run(["man", "-l", PAGE], env=environment).stdout.decode()
    return re.sub(r".\x08", "", text)


class ManualPage(unittest.TestCase):
    def test_gives_man_nothing_to_warn_of(self):
        done = run(["man", "--warnings", "-l", PAGE])
        self.assertEqual((done.returncode, done.stderr), (0, b""))

    def test_gives_mandoc_nothing_to_warn_of(self):
        done = run(["mandoc", "-T", "lint", "-W", "warning", PAGE])
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""))

    def test_describes_every_option_and_no_other(self):
        usage = run([TOOL]).stderr.decode()
        self.assertEqual(set(re.findall(r"--[a-z]+", shown())),
                         set(re.findall(r"--[a-z]+", usage)))

    def test_lists_every_key_in_order(self):
        schema = json.loads((PROJECT / "docs/report-line.schema.json").read_text(encoding="utf-8"))
        output = " ".join(shown().split("OUTPUT")[1].split("FILES")[0].split())
        self.assertIn(", ".join(schema["required"][:-1]) + " and shape,", output)

    def test_has_the_version_of_the_project(self):
        project = (PROJECT / "CMakeLists.txt").read_text(encoding="utf-8")
        version = re.search(r"VERSION ([0-9.]+) LANGUAGES", project).group(1)
        self.assertIn(f"lumo-exs-import {version}", shown())


if __name__ == "__main__":
    unittest.main()
