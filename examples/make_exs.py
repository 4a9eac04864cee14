#!/usr/bin/env python3
"""Makes the example EXS24 instrument: make_exs.py [FOLDER] (default: glass, beside this script).

The instrument plays the sounds that make_glass.py wrote to the folder: a glass struck softly or
hard, by velocity, a looped breath below it, and the glass an octave higher and very soft when a key
is released. As in any published instrument, the sample paths are those of its author's machine.
"""

import pathlib
import struct
import sys
import wave

AUTHORS_FOLDER = "/Users/ada/Music/Instruments/glass"
HEADER = 84
INSTRUMENT, ZONE, GROUP, SAMPLE, PARAMETERS = range(5)
CONTENT_SIZES = {INSTRUMENT: 80, ZONE: 136, GROUP: 132, SAMPLE: 592, PARAMETERS: 388}


def chunk(kind, name, fields):
    """A chunk with (offset, format, values...) fields; offsets are relative to its header."""
    size = CONTENT_SIZES[kind]
    data = bytearray(HEADER + size)
    struct.pack_into("<4BI8x4s64s", data, 0, 1, 1, 0, kind, size, b"TBOS", name.encode())
    for offset, layout, *values in fields:
        struct.pack_into("<" + layout, data, offset, *values)
    return bytes(data)


def instrument(name, counts):
    return chunk(INSTRUMENT, name, [(HEADER, f"{len(counts)}I", *counts)])


def zone(name, root, keys, group, sample, frames, velocities=None, loop=None, volume=0):
    fields = [
        (84, "BBbbb", 8 if velocities else 0, root, 0, 0, volume),
        (90, "BB", *keys),
        (93, "BB", *(velocities or (0, 127))),
        (96, "4i", 0, frames, *(loop or (0, frames))),
        (117, "B", 1 if loop else 0),
        (172, "2i", group, sample),
    ]
    return chunk(ZONE, name, fields)


def group(name, volume=0, on_release=False):
    fields = [
        (84, "b", volume),
        (89, "BB", 0, 127),
        (157, "B", 1 if on_release else 0),
        (164, "i", -1),
        (172, "BB", 0, 127),
    ]
    return chunk(GROUP, name, fields)


def sample(path):
    with wave.open(str(path), "rb") as sound:
        frames, rate = sound.getnframes(), sound.getframerate()
        bits, channels = 8 * sound.getsampwidth(), sound.getnchannels()
    fields = [
        (84, "6I", 44, frames, rate, bits, channels, channels),
        (112, "4s", b"EVAW"),
        (116, "I", path.stat().st_size),
        (164, "256s", AUTHORS_FOLDER.encode()),
        (420, "256s", path.name.encode()),
    ]
    return frames, chunk(SAMPLE, path.name, fields)


def parameters(values):
    places = 100
    numbers = list(values)
    fields = [
        (84, "I", places),
        (88, f"{len(numbers)}B", *numbers),
        (88 + places, f"{len(numbers)}h", *values.values()),
        (88 + 3 * places, "I", 20),
    ]
    return chunk(PARAMETERS, "Default Param", fields)


def glass_chimes(folder):
    (soft_frames, soft), (hard_frames, hard), (breath_frames, breath) = (
        sample(folder / name) for name in ("glass-soft.wav", "glass-hard.wav", "breath.wav")
    )
    zones = [
        zone("Soft", 69, (48, 96), 0, 0, soft_frames, velocities=(1, 79)),
        zone("Hard", 69, (48, 96), 0, 1, hard_frames, velocities=(80, 127)),
        zone("Breath", 57, (36, 71), 1, 2, breath_frames, loop=(0, breath_frames), volume=-9),
        zone("Echo", 57, (48, 96), 2, 0, soft_frames),
    ]
    groups = [group("Glass"), group("Breath"), group("Let go", volume=-18, on_release=True)]
    # output volume, polyphony, pitch bend, filter (off, open), the amplifier's release
    settings = parameters({7: -3, 5: 24, 3: 2, 4: -1, 44: 0, 30: 1000, 85: 48})
    counts = [0, len(zones), len(groups), 3, 1] + 15 * [0]
    samples = [soft, hard, breath]
    return b"".join([instrument("Glass Chimes", counts), *zones, *groups, *samples, settings])


def main():
    here = pathlib.Path(__file__).parent
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else here / "glass"
    (folder / "Glass Chimes.exs").write_bytes(glass_chimes(folder))


if __name__ == "__main__":
    main()
