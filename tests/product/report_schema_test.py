#!/usr/bin/env python3
"""Validates the lines of successful imports, and of imports with every error that can be caused on
Linux, against docs/report-line.schema.json."""

import copy
import json
import os
import plistlib
import resource
import signal
import unittest

import jsonschema

from lumo_testing import (PROJECT, GlassTest, built_program, import_command, preset_with_samples,
                          run)

TOOL = built_program("LUMO_TOOL")
SCHEMA = json.loads((PROJECT / "docs/report-line.schema.json").read_text(encoding="utf-8"))
VALIDATOR = jsonschema.Draft202012Validator(SCHEMA)


def object_of(pairs):
    """A JSON object; fails when a key occurs twice."""
    keys = [key for key, _ in pairs]
    assert len(set(keys)) == len(keys), keys
    return dict(pairs)


def refuse(word):
    """Fails: NaN and Infinity are not JSON."""
    raise AssertionError(word)


def no_file_grows():
    """Makes every write to a file fail, as on a full disk; runs in the child process."""
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (0, 0))


class ReportLines(GlassTest):
    def lines(self, *instruments, tracer=(), **options):
        """The lines of a run, each validated against the schema, with keys in its order."""
        environment = dict(os.environ)
        if tracer:  # a traced process cannot be searched for leaks
            environment["ASAN_OPTIONS"] = "detect_leaks=0"
        command = import_command(TOOL, self.show, instruments, self.states)
        done = run([*tracer, *command], env=environment, **options)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertTrue(done.stdout.endswith(b"\n"))
        texts = done.stdout.decode().split("\n")[:-1]
        self.assertEqual(len(texts), len(instruments), texts)
        reports = []
        for text in texts:
            report = json.loads(text, object_pairs_hook=object_of, parse_constant=refuse)
            VALIDATOR.validate(report)
            self.assertEqual(list(report), SCHEMA["required"])
            self.assertEqual(list(report["shape"]), SCHEMA["properties"]["shape"]["required"])
            for layer in report["shape"]["layers"]:
                self.assertEqual(list(layer), SCHEMA["$defs"]["layer"]["required"])
            reports.append(report)
        return reports

    def error(self, instrument, **options):
        """The error of an import that fails."""
        report = self.lines(instrument, **options)[0]
        self.assertFalse(report["ok"])
        return report["error"]

    def test_of_imports(self):
        found = preset_with_samples(self.folder / "elsewhere/Found.aupreset",
                                    sorted(self.glass.glob("*.wav")))
        moved, again, there = self.lines(self.glass / "Glass.aupreset",
                                         self.glass / "Glass.aupreset", found)
        self.assertTrue(moved["ok"] and again["ok"] and there["ok"])
        self.assertEqual(len(moved["relinked"]), 3)
        self.assertEqual(there["relinked"], [])
        self.assertEqual(len(moved["shape"]["layers"]), 2)
        self.assertGreater(moved["copiedBytes"], 0)
        self.assertEqual(again["copiedBytes"], 0)

    def test_of_an_exs_instrument(self):
        report, = self.lines(self.glass / "Glass Chimes.exs")
        self.assertTrue(report["ok"], report)
        self.assertTrue(any(layer["onRelease"] for layer in report["shape"]["layers"]))

    def test_of_a_whole_run_with_failures(self):
        unresolved = preset_with_samples(self.folder / "a/Gone.aupreset",
                                         ["/gone/\u00e9 \"1\".wav"])
        apple = preset_with_samples(self.folder / "a/Apple.aupreset",
                                    ["/Library/Application Support/Logic/1.caf"])
        not_a_list = self.folder / "a/Array.aupreset"
        not_a_list.write_bytes(plistlib.dumps([1]))
        noise = self.folder / "a/noise.wav"
        noise.write_bytes(b"no audio")
        no_audio = preset_with_samples(self.folder / "a/Noise.aupreset", [noise])
        foreign = self.folder / "a/Foreign.aupreset"
        foreign.write_bytes(plistlib.dumps({"Instrument": {}}))
        damaged = self.folder / "a/Damaged.exs"
        damaged.write_bytes(b"damaged")
        reports = self.lines(self.folder / "notes.txt", self.folder / "absent.aupreset",
                             not_a_list, apple, unresolved, no_audio, foreign, damaged,
                             self.folder / "absent.exs", self.glass / "Glass.aupreset")
        self.assertEqual([report["error"] for report in reports], [
            "not an EXS instrument or an AUSampler preset",
            "the preset isn't a property list",
            "the preset isn't a property list",
            "it uses samples from Apple's sound library: "
            "Lumo imports only your own or exported instruments",
            "a sample wasn't found: \u00e9 \"1\".wav",
            "AUSampler couldn't load it (OSStatus 1954115647)",
            "AUSampler couldn't load it (OSStatus -10851)",
            "AUSampler couldn't load it (OSStatus -10871)",
            "AUSampler couldn't load it (OSStatus -43)",
            "",
        ])
        self.assertEqual(reports[3]["appleLibrary"], ["/Library/Application Support/Logic/1.caf"])
        self.assertEqual(reports[4]["unresolved"], ["/gone/\u00e9 \"1\".wav"])

    def test_of_a_show_that_takes_no_samples(self):
        self.show.write_bytes(b"a file where a folder should be")
        self.assertRegex(self.error(self.glass / "Glass.aupreset"),
                         "^the samples couldn't be copied into the show: ")

    def test_of_a_state_that_cannot_be_written(self):
        self.lines(self.glass / "Glass.aupreset")
        self.assertEqual(
            self.error(self.glass / "Glass.aupreset", preexec_fn=no_file_grows,
                       restore_signals=False),
            "its state couldn't be written")

    def test_of_a_state_that_does_not_load_from_the_show(self):
        taken = self.show / "samples/glass/breath.wav"
        taken.parent.mkdir(parents=True)
        taken.write_bytes(bytes((self.glass / "breath.wav").stat().st_size))
        self.assertEqual(self.error(self.glass / "Glass.aupreset"),
                         "check: it didn't load from the show (OSStatus 1954115647)")

    def error_when_gone(self, instrument, path, occasion):
        """The error when the file at `path` is missing from its look-up `occasion` (from 1) on."""
        if os.environ.get("LUMO_SANITIZE"):
            self.skipTest("a sanitizer looks files up in another way, so they count differently")
        tracer = ["strace", "-f", "-o", "/dev/null", "-P", path, "-e",
                  f"inject=newfstatat:error=ENOENT:when={occasion}+"]
        return self.error(instrument, tracer=tracer)

    def test_of_a_sample_that_vanishes_after_loading(self):
        sample = self.glass / "breath.wav"
        found = preset_with_samples(self.folder / "Found.aupreset",
                                    sorted(self.glass.glob("*.wav")))
        self.assertEqual(self.error_when_gone(found, sample, 2),
                         "a sample wasn't found after loading: breath.wav")

    def test_of_a_sample_that_vanishes_from_the_show(self):
        sample = self.show / "samples/glass/breath.wav"
        self.assertEqual(self.error_when_gone(self.glass / "Glass.aupreset", sample, 1),
                         f"check: missing from the show: {sample}")


class Schema(unittest.TestCase):
    """The schema refuses lines that the tool does not print."""

    FAILED = {
        "name": "a", "source": "a.txt", "ok": False,
        "error": "not an EXS instrument or an AUSampler preset", "relinked": [], "unresolved": [],
        "appleLibrary": [], "samples": 0, "sampleBytes": 0, "copiedBytes": 0, "stateFile": "",
        "loadMs": 0.0, "shape": {"zones": 0, "maxStack": 1, "stackedPercent": 0.0,
                                 "lowestKey": 127, "highestKey": 0, "layers": []},
    }

    def test_is_a_schema(self):
        VALIDATOR.check_schema(SCHEMA)
        VALIDATOR.validate(self.FAILED)

    def assert_refuses(self, **changes):
        self.assertFalse(VALIDATOR.is_valid({**self.FAILED, **changes}), changes)

    def test_wants_every_key_and_no_other(self):
        for key in self.FAILED:
            self.assertFalse(
                VALIDATOR.is_valid({k: v for k, v in self.FAILED.items() if k != key}), key)
        for key in self.FAILED["shape"]:
            report = copy.deepcopy(self.FAILED)
            report["shape"][key + "s"] = report["shape"].pop(key)
            self.assertFalse(VALIDATOR.is_valid(report), key)
        self.assert_refuses(version="1")

    def test_refuses_an_unknown_error_and_a_contradiction(self):
        self.assert_refuses(error="it rained")
        self.assert_refuses(error="")
        self.assert_refuses(ok=True, stateFile="a.aupreset")
        self.assert_refuses(ok=True, error="")
        self.assertTrue(
            VALIDATOR.is_valid({**self.FAILED, "ok": True, "error": "", "stateFile": "a.aupreset"}))

    def test_refuses_values_of_another_type(self):
        self.assert_refuses(samples=-1)
        self.assert_refuses(samples="3")
        self.assert_refuses(loadMs=None)
        self.assert_refuses(unresolved=[""])
        self.assert_refuses(relinked=[{"from": "/a"}])


if __name__ == "__main__":
    unittest.main()
