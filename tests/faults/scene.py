"""Shared by the fault tests: small instruments, a show that already has files, and the checks that
must pass after every fault."""

import json
import os
import plistlib
import random
import struct
import subprocess
import wave
from pathlib import Path

CLASS_INFO = {
    "version": 0,
    "type": 0x61756D75,
    "subtype": 0x73616D70,
    "manufacturer": 0x6170706C,
    "name": "Untitled",
    "data": bytes.fromhex("00000000 00000000 00000004 00000384 00000000 00000385 00000000"
                          "00000386 00000000 00000387 00000000"),
}
FIRST_WAVEFORM = 0x10000000
HANG_SECONDS = 300  # far longer than any run takes on a busy machine


def write_wave(path, frames, seed):
    """Writes a mono 16-bit WAV of noise; different seeds give different bytes."""
    path.parent.mkdir(parents=True, exist_ok=True)
    with wave.open(str(path), "wb") as sound:
        sound.setnchannels(1)
        sound.setsampwidth(2)
        sound.setframerate(44100)
        sound.writeframes(random.Random(seed).randbytes(2 * frames))


def write_preset(path, references):
    """Writes an AUSampler preset with one zone for each recorded sample path."""
    zones = [{"ID": i, "enabled": True, "loop enabled": False, "root key": 60,
              "waveform": FIRST_WAVEFORM + i, "min key": i % 128, "max key": i % 128}
             for i in range(len(references))]
    state = dict(CLASS_INFO)
    state["Instrument"] = {"name": "Default Instrument", "Layers": [{"ID": 0, "Zones": zones}]}
    state["file-references"] = {f"Sample:{FIRST_WAVEFORM + i}": str(reference)
                                for i, reference in enumerate(references)}
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(plistlib.dumps(state))


def exs_chunk(kind, name, content):
    """One little-endian EXS24 chunk."""
    return struct.pack("<4BIII4s64s", 1, 1, 0, kind, len(content), 0, 0, b"TBOS",
                       name.encode()) + content


def write_exs(path, samples):
    """Writes an EXS24 instrument with one zone for each recorded sample path."""
    zones, chunks = b"", b""
    for i, sample in enumerate(samples):
        zone = bytearray(96)
        zone[1], zone[6], zone[7] = 60, i % 128, i % 128
        struct.pack_into("<ii", zone, 88, -1, i)
        zones += exs_chunk(1, f"Zone #{i + 1}", bytes(zone))
        content = bytearray(592)
        folder, name = str(Path(sample).parent).encode(), Path(sample).name.encode()
        content[80:80 + len(folder)] = folder
        content[336:336 + len(name)] = name
        chunks += exs_chunk(3, Path(sample).name, bytes(content))
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(exs_chunk(0, path.name, bytes(40)) + zones + chunks)


def contents(folder):
    """The bytes of every file below a folder, by path."""
    return {path: path.read_bytes() for path in sorted(folder.rglob("*")) if path.is_file()}


def files_not_sound(folder, originals):
    """The files below a samples folder that are not byte-identical to one of the originals."""
    return [path for path, data in contents(folder).items() if data not in originals]


def command(tool, package, states, instruments, search=()):
    """The tool's command line."""
    words = [str(tool), "--package", str(package), "--states", str(states)]
    for folder in search:
        words += ["--search", str(folder)]
    return words + [str(instrument) for instrument in instruments]


def run(words, folder, **options):
    """Runs a command for at most HANG_SECONDS; captures its standard output and error."""
    return subprocess.run(words, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True,
                          timeout=HANG_SECONDS, check=False, **options)


def line_faults(output, package, instruments):
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
            faults += state_faults(Path(report["stateFile"]), package)
    return faults


def state_faults(state_file, package):
    """The faults in a state reported as ok: it must be readable, and its samples must exist."""
    try:
        references = plistlib.loads(state_file.read_bytes())["file-references"]
    except (OSError, plistlib.InvalidFileException, KeyError) as error:
        return [f"{state_file}: {error!r}"]
    return [f"{state_file} refers to {path}, which is not there"
            for path in references.values() if not (package / path).is_file()]


def tool_from_environment():
    """The built tool, named by LUMO_TOOL."""
    return Path(os.environ["LUMO_TOOL"]).resolve()
