#!/usr/bin/env python3
"""The manual page, completions and documents of lumo-import-library."""

import os
import plistlib
import re
import shlex
import shutil
import subprocess
import unittest
from pathlib import Path

from completions import completions_in_bash, completions_in_zsh
from library_scene import LIBRARY, TOOL, LibraryTest
from lumo_testing import PROJECT, contents, import_command, run

DOCUMENT = (PROJECT / "docs/library.md").read_text(encoding="utf-8")
PAGE = Path(os.environ["LUMO_MANUAL_PAGE"])
HELP = subprocess.run([LIBRARY, "--help"], capture_output=True, text=True, check=True).stdout
OPTIONS = set(re.findall(r"--[a-z][a-z-]*", HELP))


class ManualPage(unittest.TestCase):
    def test_gives_man_and_mandoc_nothing_to_warn_of(self):
        for words in (["man", "--warnings", "-l", PAGE],
                      ["mandoc", "-T", "lint", "-W", "warning", PAGE]):
            done = run(words)
            self.assertEqual((done.returncode, done.stderr), (0, b""), done.stdout)

    def test_describes_every_option_and_no_other(self):
        shown = subprocess.run(["man", "-l", PAGE], capture_output=True, text=True, check=True,
                               env={**os.environ, "MANWIDTH": "300", "LC_ALL": "C.UTF-8"}).stdout
        self.assertEqual(set(re.findall(r"--[a-z][a-z-]*", re.sub(r".\x08", "", shown))), OPTIONS)


class Completion(LibraryTest):
    def setUp(self):
        super().setUp()
        self.make("a.exs")
        (self.folder / "lines").touch()

    def bash(self, *words):
        return completions_in_bash(LIBRARY.name, words, self.folder)

    def zsh(self, typed):
        return completions_in_zsh(LIBRARY.name, typed, self.folder)

    def test_offers_the_options(self):
        self.assertEqual(self.bash("--"), OPTIONS)
        self.assertEqual(self.zsh("--"), OPTIONS)

    def test_offers_folders_and_files_as_values(self):
        for option in ("--package", "--states", "--search"):
            self.assertEqual(self.bash(option, ""), {"lib"})
        for option in ("--page", "--lines", "--continue", "--from"):
            self.assertEqual(self.bash(option, ""), {"lib", "lines"})
        self.assertEqual(self.bash("--shard", ""), set())
        self.assertEqual(self.zsh("--states "), {"lib"})

    def test_offers_folders_and_instruments(self):
        self.assertEqual(self.bash(""), {"lib"})
        self.assertEqual(self.bash("lib/"), {"lib/a.exs"})


@unittest.skipUnless(shutil.which("parallel"), "there is no GNU parallel")
class InParts(LibraryTest):
    """The command lines of docs/library.md for several processes."""

    def commands(self, heading):
        """The indented command lines of a section, with continuation lines joined."""
        section = DOCUMENT.split(f"\n## {heading}\n")[1].split("\n## ")[0]
        block = "\n".join(line[4:] for line in section.split("\n") if line.startswith("    "))
        return block.replace("\\\n", "").strip().split("\n")

    def run_command(self, command):
        return run(["bash", "-c", command], cwd=self.folder,
                   env={**os.environ, "PATH": f"{LIBRARY.parent}:{os.environ['PATH']}",
                        "HOME": str(self.folder)})

    def make_library(self):
        root = self.folder / "Instruments"
        self.library = root
        for i in range(12):
            path = self.make_kit(f"kit{i:02}", samples=3, moved=i % 2 == 1)
            if i % 3 == 0:  # two instruments with the same samples and the same name
                shutil.copy(path, root / f"kit{i:02}.aupreset")
        for name in ("a", "b"):  # samples with equal folder and file names but different sizes
            self.make_kit(f"{name}/Kit", samples=2, frames=ord(name))

    def show_contents(self):
        """The contents of the show, independent of the numbers in names: for each state, its name
        without a number, and the keys, names and contents of the samples that it refers to."""
        states = []
        for path in sorted((self.folder / "Show.lumo/states").iterdir()):
            references = plistlib.loads(path.read_bytes())["file-references"]
            states.append((re.sub(r"-\d+$", "", path.stem),
                           [(key, re.sub(r"-\d+(?=\.\w+$)", "", sample),
                             (self.folder / "Show.lumo" / sample).read_bytes())
                            for key, sample in sorted(references.items())]))
        return sorted(states), sorted(contents(self.folder / "Show.lumo/samples").values())

    def test_gnu_parallel_makes_the_show_of_one_run(self):
        self.make_library()
        parallel, total = self.commands("More than one core")
        self.assertTrue(parallel.startswith("parallel "))
        for command in (parallel, total):
            done = self.run_command(command)
            self.assertEqual(done.returncode, 0, (command, done.stdout, done.stderr))
        self.assertIn(b"18 instruments: 18 imported, 0 failed", done.stdout)
        self.assertTrue((self.folder / "library.html").stat().st_size > 0)
        in_parts = self.show_contents()
        shutil.rmtree(self.folder / "Show.lumo")
        done = run(import_command(LIBRARY, "Show.lumo", ["Instruments"], "Show.lumo/states"),
                   cwd=self.folder)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(in_parts, self.show_contents())

    def test_slurm_array_runs_one_part_a_task(self):
        """The job script, with the variables that Slurm sets for a task."""
        self.make_library()
        commands = self.commands("Several machines")
        sbatch = next(line for line in commands if line.startswith("sbatch "))
        inner = next(word for word in shlex.split(sbatch) if word.startswith("--wrap="))[7:]
        tasks = re.search(r"--array=1-(\d+)", sbatch).group(1)
        for task in range(1, int(tasks) + 1):
            done = self.run_command(f"SLURM_ARRAY_TASK_ID={task} SLURM_ARRAY_TASK_COUNT={tasks}; "
                                    f"{inner}")
            self.assertEqual(done.returncode, 0, (done.stdout, done.stderr))
        done = self.run_command(commands[-1])
        self.assertIn(b"18 instruments: 18 imported, 0 failed", done.stdout)


class Scripts(unittest.TestCase):
    def test_import_needs_and_builds_nothing_of_it(self):
        presets = (PROJECT / "CMakePresets.json").read_text()
        self.assertRegex(presets, r'"name": "tool"[^}]*\n[^}]*"LUMO_IMPORT_LIBRARY": "OFF"')
        script = (PROJECT / "script/import").read_text()
        self.assertIn("run_built lumo-exs-import tool build ", script)
        self.assertNotIn("import-library", script)
        setup = (PROJECT / "script/setup").read_text()
        build = re.search(r"debian_build=\(([^)]*)\)", setup).group(1)
        self.assertNotRegex(build, "cli11|nlohmann")


class Documents(unittest.TestCase):
    def test_show_a_picture_of_the_page(self):
        self.assertIn("](docs/library.png)", (PROJECT / "README.md").read_text())
        self.assertIn("](library.png)", DOCUMENT)
        self.assertTrue((PROJECT / "docs/library.png").read_bytes().startswith(b"\x89PNG"))

    def test_name_every_option(self):
        self.assertLessEqual(OPTIONS - {"--help", "--version"},
                             set(re.findall(r"--[a-z][a-z-]*", DOCUMENT)))

    def test_name_the_tool_that_is_started(self):
        self.assertIn(TOOL.name, DOCUMENT)


if __name__ == "__main__":
    unittest.main()
