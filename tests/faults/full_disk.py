#!/usr/bin/env python3
"""Imports into a disk with a limited number of pages, one page more each time until the import
fits: every run ends with its line, and no sample is incomplete. Skipped when a tmpfs cannot be
mounted."""

import shutil
import subprocess
import unittest

from lumo_testing import (FolderTest, built_program, import_command, incomplete_files,
                          line_faults, run, write_preset, write_wave)

TOOL = built_program("LUMO_TOOL")
PAGE = 4096


class FullDisk(FolderTest):
    def setUp(self):
        super().setUp()
        for i in range(3):
            write_wave(self.folder / "Kit" / f"{i}.wav", 5000, i)
        self.samples = {path.read_bytes() for path in (self.folder / "Kit").iterdir()}
        self.instrument = self.folder / "Kit.aupreset"
        write_preset(self.instrument, sorted((self.folder / "Kit").iterdir()))
        self.disk = self.folder / "disk"
        self.disk.mkdir()

    def mount(self, pages):
        """Mounts a disk of `pages` pages; skips the test when it cannot."""
        made = subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={pages * PAGE}", "tmpfs",
                               self.disk], stderr=subprocess.DEVNULL, check=False)
        if made.returncode != 0:
            self.skipTest("a tmpfs cannot be mounted here")

    def test_the_disk_is_full_at_every_page(self):
        lines = []
        for pages in range(1, 100):
            self.mount(pages)
            try:
                error = self.import_into_disk()
            finally:
                subprocess.run(["umount", self.disk], check=True)
            lines.append(error)
            if error == "":
                break
        for error in sorted(set(lines)):
            print(f"{lines.count(error):4} x {error or 'ok'}", flush=True)
        self.assertEqual(lines[-1], "", "the import never fitted")
        self.assertTrue(any("copied into the show" in error for error in lines))
        self.assertIn("its state couldn't be written", lines)

    def import_into_disk(self):
        """The error of one import. Checks its line and that no sample in the show is incomplete."""
        show = self.disk / "Show.lumo"
        result = run(import_command(TOOL, show, [self.instrument]))
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(line_faults(result.stdout, show, [self.instrument]), [])
        self.assertEqual(incomplete_files(show / "samples", self.samples), [])
        error = result.stdout.decode().split('"error":"')[1].split('","relinked')[0]
        return error.replace(str(self.disk), "DISK")


if __name__ == "__main__":
    if not shutil.which("mount"):
        raise SystemExit("mount is not installed")
    unittest.main(verbosity=2)
