#!/usr/bin/env python3
"""Imports damaged instruments with the built tool.

usage: PYTHONPATH=tests/support LUMO_TOOL=... tests/faults/hostile_imports.py [COUNT [SEED]]

Presets and EXS instruments are damaged at random and imported, many in one run; each must produce
its report line. The tool's memory and processor time are limited, except for the memory of a build
with sanitizers. Instruments for which this fails are copied to the folder in LUMO_FINDINGS. """

import os
import plistlib
import random
import resource
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from lumo_testing import (HANG_SECONDS, built_program, import_command, write_exs, write_preset,
                          write_wave)

TOOL = built_program("LUMO_TOOL")
BATCH, MEMORY, PROCESSOR_SECONDS = 40, 256 << 20, 60  # the last two per run
NUMBERS = [b"\0", b"\x01", b"\x7f", b"\x80", b"\xff", b"\xff\xff\xff\xff", b"\xff\xff\xff\x7f",
           b"\0\0\0\x80", b"\xff" * 8]
WORDS = [b"<dict>", b"</dict>", b"<array>", b"<string>", b"<integer>", b"-1", b"1e999", b"&lt;",
         b"&#0;", b"Layers", b"Zones", b"Instrument", b"file-references", b"bplist00", b"TBOS",
         b"JBOS", b"SOBT", b"/dev/zero", b"../../etc/passwd", b"<data>", b"<true/>", b"waveform"]


def damage(data, seeds, chance):
    """A copy of the bytes with 1 to 16 random edits: bits and bytes changed, words inserted, parts
    deleted, repeated or replaced by those of another seed, the end cut off; 1 MiB at most."""
    data = bytearray(data)
    for _ in range(chance.choice((1, 1, 2, 4, 16))):
        at = chance.randrange(len(data) + 1)
        what = chance.randrange(7)
        if what == 0 and data:
            data[at % len(data)] ^= 1 << chance.randrange(8)
        elif what == 1:
            number = chance.choice(NUMBERS)
            data[at:at + len(number)] = number
        elif what == 2:
            data[at:at] = chance.choice(WORDS)
        elif what == 3:
            del data[at:at + chance.choice((1, 4, 84, 1000))]
        elif what == 4:
            piece = data[at:at + chance.choice((1, 16, 180, 700))]
            data[at:at] = piece * chance.choice((1, 1, 8, 200))
        elif what == 5:
            other = chance.choice(seeds)
            start = chance.randrange(len(other))
            data[at:at + 200] = other[start:start + 200]
        elif chance.random() < 0.2:
            del data[at:]
    return bytes(data[:1 << 20])


def seeds_of(folder):
    """The intact instruments of both kinds that are damaged."""
    sample = folder / "Kit" / "kick.wav"
    write_wave(sample, 100, 1)
    write_wave(folder / "Kit" / "snare.wav", 150, 2)
    samples = [sample, folder / "Kit" / "snare.wav", "/nowhere/Kit/kick.wav"]
    presets = [write_preset(folder / f"{number}.aupreset", samples, fmt=fmt)
               for number, fmt in enumerate((plistlib.FMT_XML, plistlib.FMT_BINARY))]
    return {".aupreset": [preset.read_bytes() for preset in presets],
            ".exs": [write_exs(folder / "seed.exs", samples).read_bytes()]}


def limit():
    """Limits memory and processor time; runs in the child process."""
    resource.setrlimit(resource.RLIMIT_CPU, (PROCESSOR_SECONDS, PROCESSOR_SECONDS))
    if not os.environ.get("LUMO_SANITIZE"):
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


def imported(words, count):
    """None when a run printed `count` lines and ended with status 0; otherwise a description."""
    try:
        result = subprocess.run(words, capture_output=True, preexec_fn=limit, check=False,
                                timeout=HANG_SECONDS)
    except subprocess.TimeoutExpired:
        return "it did not end"
    lines = result.stdout.count(b"\n")
    if result.returncode != 0 or lines != count:
        said = result.stderr[-2000:].decode("utf-8", "replace")
        return f"status {result.returncode}, {lines} lines: {said}"
    return None


def main():
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 10000
    chance = random.Random(int(sys.argv[2]) if len(sys.argv) > 2 else 1)
    findings = Path(os.environ.get("LUMO_FINDINGS", "findings"))
    done = found = 0
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name).resolve()
        seeds = seeds_of(folder / "seeds")
        show = folder / "Show.lumo"
        while done < count:
            shutil.rmtree(show, ignore_errors=True)
            instruments = []
            for i in range(BATCH):
                extension = chance.choice(list(seeds))
                instruments.append(folder / "in" / f"{i}{extension}")
                instruments[-1].parent.mkdir(exist_ok=True)
                everything = sum(seeds.values(), [])
                seed = chance.choice(seeds[extension])
                instruments[-1].write_bytes(damage(seed, everything, chance))
            done += BATCH
            command = import_command(TOOL, show, instruments, search=[folder / "seeds"])
            if imported(command, BATCH) is None:
                continue
            for instrument in instruments:
                command = import_command(TOOL, show, [instrument], search=[folder / "seeds"])
                fault = imported(command, 1)
                if fault:
                    findings.mkdir(parents=True, exist_ok=True)
                    kept = findings / f"{done}-{instrument.name}"
                    shutil.copy(instrument, kept)
                    print(f"{kept}: {fault}", flush=True)
                    found += 1
    peak = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss // 1024
    print(f"{done} damaged instruments imported, {found} findings, peak memory {peak} MiB")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
