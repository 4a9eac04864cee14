"""Shared by the Python tests and benchmarks: instruments and samples, runs of the built programs,
and checks of their results."""

import json
import os
import plistlib
import random
import shutil
import signal
import struct
import subprocess
import tempfile
import unittest
import wave
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
GLASS = PROJECT / "examples/glass"
HANG_SECONDS = 600  # far longer than any run takes on a busy machine

# A shell starts a background job with SIGINT ignored, and nohup its command with SIGHUP ignored. A
# program that a test sends one of them must not inherit that.
signal.signal(signal.SIGINT, signal.default_int_handler)
signal.signal(signal.SIGHUP, signal.SIG_DFL)

FIRST_WAVEFORM = 0x10000000  # the number of a preset's first sample
CLASS_INFO = {  # the values of an AUSampler preset beside its instrument
    "version": 0,
    "type": 0x61756D75,
    "subtype": 0x73616D70,
    "manufacturer": 0x6170706C,
    "name": "Untitled",
    "data": bytes.fromhex("00000000 00000000 00000004 00000384 00000000 00000385 00000000"
                          "00000386 00000000 00000387 00000000"),
}


def built_program(variable):
    """The built program that an environment variable names."""
    return Path(os.environ[variable]).resolve()


# --- samples and instruments ---------------------------------------------------------------------


def write_wave(path, frames, seed=0):
    """Writes a mono 16-bit WAV of noise; different seeds give different bytes."""
    path.parent.mkdir(parents=True, exist_ok=True)
    with wave.open(str(path), "wb") as sound:
        sound.setnchannels(1)
        sound.setsampwidth(2)
        sound.setframerate(44100)
        sound.writeframes(random.Random(seed).randbytes(2 * frames))


def zone(number, waveform, **values):
    """A zone of a preset: by default for one key. `values` has underscores in place of spaces."""
    key = number % 128
    return {"ID": number, "enabled": True, "loop enabled": False, "root key": key,
            "waveform": FIRST_WAVEFORM + waveform, "min key": key, "max key": key,
            **{name.replace("_", " "): value for name, value in values.items()}}


def write_preset(path, references, layers=None, fmt=plistlib.FMT_XML):
    """Writes an AUSampler preset that refers to these sample paths; returns its path.

    By default one layer has a zone for each reference.
    """
    if layers is None:
        layers = [{"ID": 0, "Zones": [zone(i, i) for i in range(len(references))]}]
    state = {**CLASS_INFO, "Instrument": {"name": "Default Instrument", "Layers": layers},
             "file-references": {f"Sample:{FIRST_WAVEFORM + i}": os.fspath(reference)
                                 for i, reference in enumerate(references)}}
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(plistlib.dumps(state, fmt=fmt))
    return path


def preset_with_samples(target, samples):
    """Writes the example preset to `target`, with the paths of its first samples replaced."""
    state = plistlib.loads((GLASS / "Glass.aupreset").read_bytes())
    state["file-references"].update(
        zip(sorted(state["file-references"]), (str(sample) for sample in samples)))
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(plistlib.dumps(state))
    return target


def exs_chunk(kind, name, content):
    """One little-endian EXS24 chunk."""
    return struct.pack("<4BI8x4s64s", 1, 1, 0, kind, len(content), b"TBOS",
                       os.fsencode(name)) + content


def exs_zone(number, group, sample, frames):
    content = bytearray(136)
    content[1], content[6], content[7], content[10] = 60, number % 128, number % 128, 127
    struct.pack_into("<2i", content, 12, 0, frames)
    struct.pack_into("<2i", content, 88, group, sample)
    return exs_chunk(1, f"Zone #{number + 1}", bytes(content))


def exs_group(number):
    content = bytearray(132)
    content[6], content[89] = 127, 127  # the highest velocity and key
    return exs_chunk(2, f"Group #{number + 1}", bytes(content))


def exs_sample(path, frames):
    content = bytearray(592)
    struct.pack_into("<6I", content, 0, 44, frames, 44100, 16, 1, 1)
    struct.pack_into("<4sI", content, 28, b"EVAW", 44 + 2 * frames)
    struct.pack_into("256s", content, 80, os.fsencode(path.parent))
    struct.pack_into("256s", content, 336, os.fsencode(path.name))
    return exs_chunk(3, path.name, bytes(content))


def write_exs(path, samples, zones=None, groups=0, frames=0):
    """Writes an EXS24 instrument that refers to these sample paths; returns its path.

    The zones (by default one for each sample) use the groups and the samples in turn. `frames` is
    the recorded length of every sample.
    """
    zones = len(samples) if zones is None else zones
    counts = struct.pack("<4I", 0, zones, groups, len(samples))
    chunks = [exs_chunk(0, path.name, counts.ljust(80, b"\0"))]
    chunks += [exs_zone(i, i % groups if groups else -1, i % len(samples), frames)
               for i in range(zones)]
    chunks += [exs_group(i) for i in range(groups)]
    chunks += [exs_sample(Path(sample), frames) for sample in samples]
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(b"".join(chunks))
    return path


# --- runs ----------------------------------------------------------------------------------------


def import_command(tool, show, instruments, states=None, search=()):
    """The tool's command line. The default folder for the states is "states" in the show."""
    searches = [word for folder in search for word in ("--search", folder)]
    return [tool, "--package", show, "--states", states or show / "states", *searches, *instruments]


def run(words, **options):
    """Runs a command to its end, for at most HANG_SECONDS; captures its output and errors."""
    return subprocess.run(words, stdin=subprocess.DEVNULL, capture_output=True,
                          timeout=HANG_SECONDS, check=False, **options)


# The beginning of a command that runs the rest of it without /proc.
WITHOUT_PROC = ["unshare", "-m", "sh", "-c", 'umount -l /proc && exec "$@"', "sh"]


def can_run(words):
    """Whether a command exists and succeeds."""
    return shutil.which(words[0]) is not None and run(words).returncode == 0


def require_terminals():
    """Skips the test where no pseudo-terminal can be opened, as in a root without /dev/pts."""
    try:
        for descriptor in os.openpty():
            os.close(descriptor)
    except OSError as error:
        raise unittest.SkipTest(f"no pseudo-terminal can be opened here: {error.strerror}")


class FolderTest(unittest.TestCase):
    """A test with a temporary folder."""

    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name).resolve()
        self.show = self.folder / "Show.lumo"


class GlassTest(FolderTest):
    """A test with a copy of the example in glass/."""

    def setUp(self):
        super().setUp()
        self.glass = self.folder / "glass"
        shutil.copytree(GLASS, self.glass)
        self.states = self.folder / "states"


# --- checks --------------------------------------------------------------------------------------


def contents(folder):
    """The bytes of every file below a folder, by path relative to it."""
    return {path.relative_to(folder): path.read_bytes()
            for path in sorted(folder.rglob("*")) if path.is_file()}


def incomplete_files(folder, originals):
    """The files below a folder that are not byte-identical to one of the originals."""
    return [path for path, data in contents(folder).items() if data not in originals]


def line_faults(output, show, instruments):
    """The faults in the report lines: in their number, their format, and their contents."""
    faults = []
    lines = output.decode("utf-8", "replace").split("\n")
    if lines[-1] != "":
        faults.append("the last line has no end")
    reports = []
    for text in lines[:-1]:
        try:
            reports.append(json.loads(text))
        except ValueError:
            faults.append(f"no JSON: {text[:80]}")
    if [report["source"] for report in reports] != [str(i) for i in instruments[:len(reports)]]:
        faults.append("the lines are not those of the instruments in their order")
    if len(reports) != len(instruments):
        faults.append(f"{len(reports)} lines for {len(instruments)} instruments")
    for report in reports:
        if report["ok"] != (report["error"] == ""):
            faults.append(f"ok and error contradict each other: {report}")
        if report["ok"]:
            faults += state_faults(Path(report["stateFile"]), show)
    return faults


def state_faults(state_file, show):
    """The faults in a state reported as ok: it must be readable, and its samples must exist."""
    try:
        references = plistlib.loads(state_file.read_bytes())["file-references"]
    except (OSError, plistlib.InvalidFileException, KeyError) as error:
        return [f"{state_file}: {error!r}"]
    return [f"{state_file} refers to {path}, which does not exist"
            for path in references.values() if not (show / path).is_file()]
