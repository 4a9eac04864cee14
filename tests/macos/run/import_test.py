#!/usr/bin/env python3
"""The Mac's programs under macos-run give the same results as those for Linux, with every function
that the sampler may use to look for samples and to open them, and behave as docs/macos.md describes
when the system refuses interposing.

usage: import_test.py RUNNER MAC_TOOL LINUX_TOOL      (lumo-import-library is beside each)
"""

import json
import os
import re
import shutil
import sys
import unittest
from pathlib import Path

from lumo_testing import GLASS, FolderTest, contents, import_command, run

EXAMPLES = ("Glass.aupreset", "Glass Chimes.exs")
# The functions with which the sampler may open a sample, and look for one before that.
OPENS = """open open$NOCANCEL openat openat$NOCANCEL open_dprotected_np openat_dprotected_np
    guarded_open_np guarded_open_dprotected_np fopen fopen$DARWIN_EXTSN""".split()
LOOKS = """stat stat64 lstat lstat64 statfs fstatat access faccessat accessx_np getattrlist
    getattrlistat pathconf listxattr realpath realpath$DARWIN_EXTSN""".split()
# The library's weak imports: functions that an older system or another processor lacks.
WEAK = """_stat64 _lstat64 _open_dprotected_np _openat_dprotected_np _guarded_open_np
    _guarded_open_dprotected_np""".split()


class ImportTest(FolderTest):
    def place(self, name):
        """A new folder with a copy of the example, in which the recorded sample paths do not
        exist."""
        shutil.copytree(GLASS, self.folder / name / "glass")
        return self.folder / name

    def run_tool(self, words, place, instruments, **settings):
        """The lines of an import in that folder, without their load times."""
        *emulator, tool = words
        command = import_command(tool, "Show.lumo", instruments, "Show.lumo/states")
        result = run([*emulator, *command], cwd=place, text=True, env=os.environ | settings)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return [re.sub(r'"loadMs":[0-9.]+,', "", line) for line in result.stdout.splitlines()]

    def mac_lines(self, place, instruments, **settings):
        return self.run_tool([RUNNER, MAC_TOOL], place, instruments, **settings)

    def linux_lines(self, place, instruments):
        return self.run_tool([LINUX_TOOL], place, instruments)

    def check_same(self, instruments, prepare=lambda place: None, **settings):
        """Imports with both tools; lines, shows and states must be equal."""
        lines, shows = [], []
        for name in ("mac", "linux"):
            place = self.place(name)
            prepare(place)
            lines.append(self.mac_lines(place, instruments, **settings) if name == "mac"
                         else self.linux_lines(place, instruments))
            shows.append(contents(place))
            shutil.rmtree(place)
        self.assertEqual(lines[0], lines[1])
        self.assertEqual(shows[0], shows[1])
        return [json.loads(line) for line in lines[0]]


class Imports(ImportTest):
    def test_both_examples_are_imported_as_on_linux(self):
        reports = self.check_same([f"glass/{name}" for name in EXAMPLES])
        self.assertEqual([report["ok"] for report in reports], [True, True])
        self.assertEqual([len(report["relinked"]) for report in reports], [3, 3])

    def test_failing_imports_are_reported_as_on_linux(self):
        def prepare(place):
            (place / "glass/breath.wav").unlink()
            (place / "broken.exs").write_bytes(b"no instrument")
        instruments = [*(f"glass/{name}" for name in EXAMPLES), "broken.exs", "absent.aupreset"]
        reports = self.check_same(instruments, prepare)
        self.assertEqual([report["ok"] for report in reports], [False] * 4)
        self.assertEqual(len(reports[0]["unresolved"]), 1)

    def test_a_show_that_is_no_folder_is_reported(self):
        place = self.place("file")
        (place / "Show.lumo").write_bytes(b"no folder")
        line, = self.mac_lines(place, ["glass/Glass.aupreset"])
        self.assertIn('"ok":false,"error":"the samples couldn\'t be copied into the show: ', line)
        self.assertIn("Not a directory", line)

    def test_a_state_is_one_write(self):
        place = self.place("traced")
        trace = self.folder / "trace"
        words = ["strace", "-f", "-y", "-qq", "-o", trace, "-e", "trace=write,writev,pwrite64",
                 RUNNER, MAC_TOOL]
        self.run_tool(words, place, [f"glass/{name}" for name in EXAMPLES])
        writes = re.findall(r"\bp?writev?(?:64)?\(\d+<[^>]*/states/([^>]*)>", trace.read_text())
        print(f"\n{len(writes)} writes for {len(EXAMPLES)} states", flush=True)
        self.assertEqual(len(writes), len(EXAMPLES), writes)


class Library(ImportTest):
    """lumo-import-library, which starts the tool beside it."""

    def run_library(self, words, place):
        """The output and files of a run in that folder, without times."""
        *emulator, program = words
        arguments = ["--page", "page.html", "--lines", "lines", "glass", "broken"]
        command = import_command(program, "Show.lumo", arguments, "Show.lumo/states", ["glass"])
        result = run([*emulator, *command], cwd=place, text=True)
        self.assertEqual((result.returncode, result.stderr), (2, ""))
        written = {"output": result.stdout, "lines": (place / "lines").read_text(),
                   "page": (place / "page.html").read_text()}
        for name, time, count in (("output", r"(?<=copied, )[0-9.]+ s$", 1),
                                  ("lines", r'"loadMs":[0-9.]+,', 3),
                                  ("page", r'"made":"[^"]*"|"seconds":[0-9.]+', 2),
                                  ("page", r"(?:(?<=\.aupreset\",)|(?<=,\"\",))[0-9]+\.[0-9],", 3)):
            written[name], found = re.subn(time, "", written[name], flags=re.MULTILINE)
            self.assertEqual(found, count, (name, time))
        return written

    def test_a_whole_library_is_imported_as_on_linux(self):
        written, shows = [], []
        for words in ([RUNNER, MAC_LIBRARY], [LINUX_LIBRARY]):
            place = self.place("library")
            (place / "broken").mkdir()
            (place / "broken/broken.exs").write_bytes(b"no instrument")
            written.append(self.run_library(words, place))
            shows.append(contents(place / "Show.lumo"))
            shutil.rmtree(place)
        self.assertIn("3 instruments: 2 imported, 1 failed\n", written[0]["output"])
        self.assertEqual(len(written[0]["lines"].splitlines()), 3)
        for name in ("output", "lines", "page"):
            self.assertEqual(written[0][name], written[1][name])
        self.assertEqual(shows[0], shows[1])


class Sampler(ImportTest):
    def check_relinks(self, **settings):
        report, = self.check_same(["glass/Glass.aupreset"], **settings)
        self.assertTrue(report["ok"])
        self.assertEqual(len(report["relinked"]), 3)

    def test_every_way_to_open_a_sample_is_relinked(self):
        for how in OPENS:
            with self.subTest(how):
                self.check_relinks(LUMO_SAMPLER_OPENS=how)

    def test_every_way_to_look_for_a_sample_is_relinked(self):
        for how in LOOKS:
            with self.subTest(how):
                self.check_relinks(LUMO_SAMPLER_LOOKS=how)

    def test_an_unknown_way_is_named(self):
        for setting in ("LUMO_SAMPLER_OPENS", "LUMO_SAMPLER_LOOKS"):
            with self.subTest(setting):
                place = self.place(setting)
                command = import_command(MAC_TOOL, "S", ["glass/Glass.aupreset"], "S")
                result = run([RUNNER, *command], cwd=place, text=True,
                             env=os.environ | {setting: "guesses"})
                self.assertEqual(result.returncode, 99)
                self.assertIn("guesses", result.stderr)


class Systems(ImportTest):
    def test_functions_that_the_system_lacks_are_done_without(self):
        for lacking in ([name] for name in WEAK):
            with self.subTest(lacking):
                report, = self.check_same(["glass/Glass.aupreset"],
                                          LUMO_MACOS_LACKS=f",{','.join(lacking)},")
                self.assertEqual(len(report["relinked"]), 3)

    def test_all_of_them_may_be_absent(self):
        report, = self.check_same(["glass/Glass.aupreset"],
                                  LUMO_MACOS_LACKS=f",{','.join(WEAK)},")
        self.assertEqual(len(report["relinked"]), 3)

    def test_refused_interposing_leaves_moved_samples_missing_and_the_lists_empty(self):
        line, = self.mac_lines(self.place("refused"), ["glass/Glass.aupreset"],
                               LUMO_MACOS_NO_INTERPOSING="1")
        self.assertIn('"ok":false,"error":"AUSampler couldn\'t load it (OSStatus -43)",'
                      '"relinked":[],"unresolved":[],"appleLibrary":[]', line)

    def test_refused_interposing_imports_samples_that_have_not_moved(self):
        place = self.place("there")
        preset = (place / "glass/Glass.aupreset").read_text()
        moved = preset.replace("/Users/ada/Music/Instruments/glass", str(place / "glass"))
        self.assertNotEqual(moved, preset)
        (place / "There.aupreset").write_text(moved)
        line, = self.mac_lines(place, ["There.aupreset"], LUMO_MACOS_NO_INTERPOSING="1")
        report = json.loads(line)
        self.assertEqual((report["ok"], report["samples"]), (True, 3))


if __name__ == "__main__":
    RUNNER, MAC_TOOL, LINUX_TOOL = (os.path.abspath(path) for path in sys.argv[1:4])
    MAC_LIBRARY, LINUX_LIBRARY = (str(Path(tool).with_name("lumo-import-library"))
                                  for tool in (MAC_TOOL, LINUX_TOOL))
    unittest.main(argv=sys.argv[:1], verbosity=2)
