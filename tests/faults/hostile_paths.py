#!/usr/bin/env python3
"""Samples and instruments that are not files, or not of the type that their names suggest: each
produces a report line within seconds, and only audio files are copied."""

import json
import os
import unittest

from lumo_testing import (FolderTest, built_program, contents, import_command, line_faults, run,
                          write_exs, write_preset)

TOOL = built_program("LUMO_TOOL")
NOT_AUDIO = "AUSampler couldn't load it (OSStatus 1954115647)"
MISSING = "AUSampler couldn't load it (OSStatus -43)"


class HostilePaths(FolderTest):
    def setUp(self):
        super().setUp()
        os.mkfifo(self.folder / "pipe.wav")
        os.symlink("/dev/zero", self.folder / "endless.wav")
        os.symlink("loop.wav", self.folder / "loop.wav")
        (self.folder / "folder.wav").mkdir()
        (self.folder / "text.wav").write_text("no sound")
        (self.folder / "empty.wav").write_bytes(b"")

    def report(self, instrument):
        result = run(import_command(TOOL, self.show, [instrument]))
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(line_faults(result.stdout, self.show, [instrument]), [])
        return json.loads(result.stdout.decode("utf-8", "replace"))

    def refused(self, sample):
        """The import errors of a preset and of an EXS instrument that refer to this sample."""
        reports = [self.report(write_preset(self.folder / "in" / "a.aupreset", [sample])),
                   self.report(write_exs(self.folder / "in" / "a.exs", [sample]))]
        self.assertFalse(any(report["ok"] for report in reports), reports)
        self.assertEqual(contents(self.show), {})
        return [report["error"] for report in reports]

    def test_samples_that_are_no_audio_files_are_refused(self):
        for name in ("pipe.wav", "endless.wav", "folder.wav", "text.wav", "empty.wav"):
            with self.subTest(name):
                self.assertEqual(self.refused(self.folder / name), [NOT_AUDIO] * 2)

    def test_a_link_to_itself_is_no_sample(self):
        self.assertEqual(self.refused(self.folder / "loop.wav"), [MISSING] * 2)

    def test_devices_and_system_files_are_refused(self):
        for path in ("/dev/zero", "/dev/null", "/etc/passwd", "/proc/self/mem"):
            with self.subTest(path):
                self.assertTrue(all(error.startswith("AUSampler couldn't load it")
                                    for error in self.refused(path)))

    def test_paths_that_climb_out_are_refused(self):
        errors = self.refused("/" + "../" * 40 + "etc/passwd")
        self.assertEqual(errors, [NOT_AUDIO] * 2)
        self.refused("../../etc/passwd")

    def test_instruments_that_are_no_files_end_in_a_line(self):
        for name in ("folder", "zero", "loop"):
            for extension in (".exs", ".aupreset"):
                with self.subTest(name + extension):
                    path = self.folder / "odd" / (name + extension)
                    path.parent.mkdir(exist_ok=True)
                    if name == "folder":
                        path.mkdir()
                    else:
                        path.symlink_to("/dev/zero" if name == "zero" else path.name)
                    self.assertFalse(self.report(path)["ok"])
        self.assertEqual(contents(self.show), {})

    def test_an_exs_pipe_without_a_writer_does_not_hang(self):
        os.mkfifo(self.folder / "pipe.exs")
        self.assertFalse(self.report(self.folder / "pipe.exs")["ok"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
