#!/usr/bin/env python3
"""Makes a library of instruments to try lumo-import-library with.

usage: PYTHONPATH=tests/support tests/library/made_library.py FOLDER [INSTRUMENTS]

Writes 2,000 instruments by default, in 60 folders of FOLDER/Instruments. 200 of their samples moved
to FOLDER/Moved, others are missing, 3 instruments play samples of Apple's library, and every error
that an input file can cause occurs (a missing permission only when it is not root who runs this).
Samples are short, 1 to 3 KB; make() can also write samples as long as those of real instruments.
"""

import os
import plistlib
import struct
import sys
from pathlib import Path

from lumo_testing import CLASS_INFO, write_exs, write_preset, write_wave, zone

INSTRUMENTS, FOLDERS, MOVED = 2000, 60, 200
KINDS = ("Violins", "Violas", "Cellos", "Basses", "Flutes", "Oboes", "Clarinets", "Bassoons",
         "Horns", "Trumpets", "Trombones", "Timpani", "Harp", "Celesta", "Piano", "Choir", "Organ",
         "Marimba", "Vibraphone", "Glockenspiel")
PLACES = ("Chamber", "Hall", "Studio")
STYLES = ("Legato", "Spiccato", "Tremolo", "Pizzicato", "Sustain", "Marcato", "Con Sordino",
          "Harmonics")
SAMPLES = 4

# Lengths of samples in frames of two bytes. The usual ones have the deciles of 46 samples of real
# instruments: 1 to 660 KB, the median 52 KB, the mean 141 KB.
SHORT_LENGTHS = tuple(range(500, 1497))
USUAL_LENGTHS = tuple(500 * kilobytes
                      for kilobytes in (1, 8, 21, 26, 33, 52, 59, 77, 130, 480, 660))


def layer(number, name, areas, **more):
    zones = [zone(i, i % SAMPLES, root_key=low, min_key=low, max_key=high, min_vel=soft,
                  max_vel=loud) for i, (low, high, soft, loud) in enumerate(areas)]
    return {"ID": number, "name": name, "Zones": zones, **more}


def layers_of(i):
    """Layers that differ from instrument to instrument."""
    low, step = 24 + i % 24, 3 + i % 4
    high = min(low + 8 * step, 120)
    split = 50 + i % 40
    keys = [(key, min(key + step - 1, high)) for key in range(low, high, step)]
    layers = [layer(0, "Sustain", [(a, b, 1, split) for a, b in keys] +
                    [(a, b, split + 1, 127) for a, b in keys])]
    if i % 3 == 0:
        layers.append(layer(1, "Noise", [(low, high, 90, 127)]))
    if i % 4 == 0:
        layers.append(layer(2, "Release", [(a, b, 1, 127) for a, b in keys[::2]],
                            **{"trigger mode": 12}))
    if i % 5 == 0:
        layers.append(layer(3, "Mod wheel", [(low, high, 1, 60)],
                            **{"sel ctrlr": 1, "min key": low + step, "max vel": 40}))
    return layers


def preset(path, references, layers):
    write_preset(path, references, layers, plistlib.FMT_BINARY)


def failures(folder):
    """The names of instruments that fail, each with another error, and functions that write them to
    a path."""
    good = folder / "good.wav"
    write_wave(good, 60)
    text = folder / "no sound.wav"
    text.write_text("this is no sound")
    badly_named = Path(os.fsdecode(os.fsencode(folder.parent / "Moved") + b"/\xff"))
    write_wave(badly_named / "badly named.wav", 61)
    one = [layer(0, "", [(60, 60, 1, 127)])]
    another = {"Instrument": {"Layers": one}, **CLASS_INFO, "subtype": 0}
    scope = {"Instrument": {"Layers": one}, **CLASS_INFO, "data": struct.pack(">3I", 99, 0, 0)}
    many = layer(0, "", [(60, 60, 1, 127)])
    many["Zones"] *= 2100  # the file contains the zone and the layer only once

    def closed(path):
        write_exs(path, [good])
        path.chmod(0)

    made = [
        ("Not a list.aupreset", lambda path: path.write_text("no property list")),
        ("Empty.aupreset", lambda path: path.write_bytes(b"")),
        ("Damaged.exs", lambda path: path.write_bytes(b"\1\1\0\0" * 50)),
        ("Another unit.aupreset", lambda path: path.write_bytes(plistlib.dumps(another))),
        ("Another scope.aupreset", lambda path: path.write_bytes(plistlib.dumps(scope))),
        ("Too many groups.exs", lambda path: write_exs(path, [good], 4097, 4097)),
        ("Too many zones.aupreset", lambda path: preset(path, [good], [many] * 2100)),
        ("Plays a text.aupreset", lambda path: preset(path, [text], one)),
        ("Plays nothing.aupreset", lambda path: preset(path, [folder / "gone"], one)),
        ("Loses its sample.aupreset",
         lambda path: preset(path, ["/Volumes/Old Disk/Solo/gone.wav"], one)),
        ("Sample in an odd folder.aupreset",
         lambda path: preset(path, ["/Volumes/Old Disk/badly named.wav"], one)),
        (f"{'Name too long for a state ' * 10}"[:250] + ".exs",
         lambda path: write_exs(path, [good])),
    ]
    return made + ([("Closed.exs", closed)] if os.geteuid() != 0 else [])


def make(folder, instruments=INSTRUMENTS, lengths=SHORT_LENGTHS):
    """Makes the library in `folder`, with samples of these lengths by turns; returns the number of
    instruments that fail."""
    root = folder / "Instruments"
    bad = failures(folder / "Odd")
    names = [(f"{PLACES[i % 3]} {KINDS[i // 3 % len(KINDS)]}",
              STYLES[i // FOLDERS % len(STYLES)], i) for i in range(instruments)]
    failed = 0
    for name, style, i in names:
        path = root / name / f"{style} {i // FOLDERS + 1}.aupreset"
        recorded = Path("/Volumes/Old Disk/Samples") / name
        samples = [f"{style} {i} {note}.wav" for note in range(SAMPLES)]
        path.parent.mkdir(parents=True, exist_ok=True)
        if i % 100 == 7 and i // 100 < len(bad):
            title, write = bad[i // 100]
            write(path.parent / title)
            failed += 1
        elif i % (instruments // 3 + 1) == 11:
            apple = "/Library/Application Support/Logic/Samples/Strings"
            preset(path, [f"{apple}/{sample}" for sample in samples], layers_of(i))
            failed += 1
        elif i % 20 == 13:  # their samples were on a disk that is missing
            preset(path, [recorded / sample for sample in samples], layers_of(i))
            failed += 1
        else:
            moved = i % (instruments * SAMPLES // MOVED) == 1
            place = folder / "Moved" / name if moved else root / name
            for note, sample in enumerate(samples):
                number = i * SAMPLES + note
                write_wave(place / sample, lengths[number % len(lengths)], number)
            preset(path, [(recorded if moved else root / name) / sample for sample in samples],
                   layers_of(i))
    return failed


if __name__ == "__main__":
    print(make(Path(sys.argv[1]).resolve(), int(sys.argv[2]) if len(sys.argv) > 2 else INSTRUMENTS))
