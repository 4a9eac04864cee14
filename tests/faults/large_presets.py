#!/usr/bin/env python3
"""Presets of 100 MB and deeply nested presets: each produces its report line within limited memory,
and the valid ones are imported."""

import json
import plistlib
import random
import resource
import sys
import unittest
from pathlib import Path

from lumo_testing import (FolderTest, built_program, import_command, line_faults, run, write_preset,
                          write_wave)

TOOL = built_program("LUMO_TOOL")
SIZE, MEMORY = 100_000_000, 400 << 20
NO_LIST = "the preset isn't a property list"


def limit(memory):
    """Limits memory; runs in the child process."""
    resource.setrlimit(resource.RLIMIT_AS, (memory, memory))


def number(value, width):
    return value.to_bytes(width, "big")


def nested_in_binary(depth):
    """A binary property list of `depth` nested arrays."""
    objects = b"".join(b"\xa1" + number(i, 4) for i in range(1, depth)) + b"\xa0"
    offsets = b"".join(number(8 + 5 * i, 4) for i in range(depth))
    return (b"bplist00" + objects + offsets + bytes(6) + b"\4\4" + number(depth, 8) + number(0, 8)
            + number(8 + len(objects), 8))


def much_of_one_zone(layers, zones):
    """A binary preset that refers to one layer object many times, and that to one zone object."""
    zone = {"enabled": True}
    layer = {"Zones": [zone] * zones}
    return plistlib.dumps({"version": 0, "subtype": 0x73616D70, "manufacturer": 0x6170706C,
                           "Instrument": {"Layers": [layer] * layers}}, fmt=plistlib.FMT_BINARY)


class LargePresets(FolderTest):
    def setUp(self):
        super().setUp()
        self.preset = self.folder / "large.aupreset"

    def report(self, memory=MEMORY):
        result = run(import_command(TOOL, self.show, [self.preset]),
                     preexec_fn=lambda: limit(memory))
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(line_faults(result.stdout, self.show, [self.preset]), [])
        return json.loads(result.stdout)

    def error(self, data):
        self.preset.write_bytes(data)
        return self.report()["error"]

    def write_large(self, start, part, end=b""):
        """Writes a preset of 100 MB: `start`, repetitions of `part`, and `end`."""
        block = part * (1_000_000 // len(part) + 1)
        with self.preset.open("wb") as file:
            file.write(start)
            while file.tell() < SIZE:
                file.write(block)
            file.write(end)

    def preset_around(self):
        """A preset that plays a sound, in two parts; array items can be written between them."""
        sound = self.folder / "Kit" / "kick.wav"
        write_wave(sound, 100, 1)
        write_preset(self.preset, [sound])
        zones = b"<key>Layers</key>"
        start, end = self.preset.read_bytes().split(zones)
        return start + b"<key>much</key><array>", b"</array>" + zones + end

    def test_a_huge_array_is_imported(self):
        start, end = self.preset_around()
        self.write_large(start, b"<string>" + b"x" * 300 + b"</string>", end)
        report = self.report()
        self.assertTrue(report["ok"], report)
        # The state stores the string once, so it is small, but its array has as many items.
        Path(report["stateFile"]).rename(self.preset)
        self.assertLess(self.preset.stat().st_size, SIZE // 100)
        self.assertTrue(self.report()["ok"])

    def test_a_binary_preset_of_much_data_is_imported(self):
        self.preset.write_bytes(b"".join(self.preset_around()))
        state = plistlib.loads(self.preset.read_bytes())
        state["much"] = bytes(SIZE)
        self.preset.write_bytes(plistlib.dumps(state, fmt=plistlib.FMT_BINARY))
        self.assertTrue(self.report()["ok"])

    def test_a_small_preset_with_a_billion_zones_is_refused(self):
        self.assertEqual(self.error(much_of_one_zone(40000, 40000)),
                         "AUSampler couldn't load it (OSStatus -108)")

    def test_a_preset_that_names_one_zone_often_is_imported(self):
        self.preset.write_bytes(much_of_one_zone(300, 300))
        self.assertEqual(self.report()["shape"]["zones"], 300 * 300)

    def test_garbage_is_refused(self):
        for start, garbage in ((b"bplist00", random.Random(1).randbytes(1000)), (b"<", b"<")):
            with self.subTest(start):
                self.write_large(start, garbage)
                self.assertEqual(self.report()["error"], NO_LIST)

    def test_the_bytes_of_a_preset_are_held_once(self):
        self.write_large(b"<", b"<")
        self.assertEqual(self.report(SIZE * 3 // 2)["error"], NO_LIST)

    def test_deep_nesting_is_refused(self):
        self.assertEqual(self.error(b"<plist>" + b"<array>" * 100000 + b"</array>" * 100000
                                    + b"</plist>"), NO_LIST)
        self.assertEqual(self.error(b"<plist>" + b"<dict><key>k</key>" * 100000), NO_LIST)
        self.assertEqual(self.error(nested_in_binary(100000)), NO_LIST)

    def test_nesting_as_deep_as_is_read_is_imported(self):
        depth = 509  # inside an array and two dictionaries
        start, end = self.preset_around()
        self.preset.write_bytes(start + b"<array>" * depth + b"</array>" * depth + end)
        self.assertTrue(self.report()["ok"])


if __name__ == "__main__":
    sys.setrecursionlimit(5000)  # plistlib checks the states recursively
    unittest.main(verbosity=2)
