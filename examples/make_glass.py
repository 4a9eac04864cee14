#!/usr/bin/env python3
"""Makes the example instrument: make_glass.py [FOLDER] (default: glass, beside this script).

Synthesises three short sounds and writes an AUSampler preset that plays them: a glass struck softly
or hard, by velocity, and below it a looped breath. The preset is as the sampler saves it on its
author's machine, so its sample paths are valid on no other machine.
"""

import array
import math
import pathlib
import plistlib
import struct
import sys
import wave

RATE = 22050
AUTHORS_FOLDER = "/Users/ada/Music/Instruments/glass"
FIRST_WAVEFORM = 0x10000000


def single(value):
    """The value as the sampler stores it: rounded to single precision."""
    return struct.unpack("f", struct.pack("f", value))[0]


# --- sound ---------------------------------------------------------------------------------------


def strike(brightness):
    """0.6 s of a glass at 440 Hz (key 69): partials of a struck rim; the high ones decay first."""
    partials = [(1.0, 1.0, 5.0), (2.32, 0.5, 8.0), (4.25, 0.3, 12.0), (6.63, 0.2, 18.0)]
    for n in range(int(0.6 * RATE)):
        t = n / RATE
        onset = min(1.0, t / 0.002)
        fade = min(1.0, (0.6 - t) / 0.02)
        yield onset * fade * sum(
            level * brightness**order * math.exp(-decay * t)
            * math.sin(2 * math.pi * 440 * ratio * t)
            for order, (ratio, level, decay) in enumerate(partials)
        )


def breath():
    """0.5 s at 220 Hz (key 57) that loops without a click: all partials have a whole number of
    periods, the fundamental 110."""
    for n in range(int(0.5 * RATE)):
        t = n / RATE
        swell = 0.8 + 0.2 * math.sin(2 * math.pi * 2 * t)
        yield swell * sum(math.sin(2 * math.pi * 220 * k * t) / k**2 for k in range(1, 6))


def write_wave(path, samples, peak):
    values = list(samples)
    scale = peak * 32767 / max(abs(value) for value in values)
    frames = array.array("h", (round(value * scale) for value in values))
    if sys.byteorder == "big":
        frames.byteswap()
    with wave.open(str(path), "wb") as stream:
        stream.setnchannels(1)
        stream.setsampwidth(2)
        stream.setframerate(RATE)
        stream.writeframes(frames.tobytes())


# --- preset --------------------------------------------------------------------------------------


def connection(number, source, destination, transform, control=0, scale=None, spread=None):
    entry = {
        "ID": number,
        "control": control,
        "destination": destination,
        "enabled": True,
        "inverse": scale is not None and scale < 0,
        "source": source,
        "transform": transform,
    }
    if scale is not None:
        entry["scale"] = single(scale)
    else:
        entry["min value"] = single(-spread)
        entry["max value"] = single(spread)
    return entry


def connections(layer):
    """The connections of a new layer; those of its LFO and envelope contain its number."""
    pitch, gain, pan = 0x30B00000, 0x50100000, 0x50200000
    own = 256 * layer
    return [
        connection(0, 300, pitch, 1, scale=12800.0),
        connection(1, 301, gain, 2, scale=-96.0),
        connection(2, 7, gain, 2, scale=-96.0),
        connection(3, 11, gain, 2, scale=-96.0),
        connection(4, 10, pan, 1, spread=0.508),
        connection(7, 224, pitch, 1, control=241, spread=12800.0),
        connection(8, 242, pitch, 1, spread=100.0),
        connection(6, 0x10000000 + own, pitch, 1, control=1, spread=50.0),
        connection(5, 0x20000000 + own, gain, 1, scale=-96.0),
    ]


def envelope(attack, release):
    times = {0: 0.0, 1: attack, 2: 0.0, 3: 0.0, 5: release, 6: 0.005}
    stages = [
        {"curve": 22 if stage == 1 else 20, "stage": stage, "time": single(time)}
        for stage, time in times.items()
    ]
    stages.insert(4, {"level": 1.0, "stage": 4})
    return {"ID": 0, "Stages": stages, "enabled": True}


def layer(number, name, attack, release, zones):
    return {
        "Amplifier": {"ID": 0, "enabled": True},
        "Connections": connections(number),
        "Envelopes": [envelope(attack, release)],
        "Filters": {"ID": 0, "cutoff": 20000.0, "enabled": False, "resonance": -3.0},
        "ID": number,
        "LFOs": [{"ID": 0, "enabled": True}],
        "Oscillator": {"ID": 0, "enabled": True},
        "Zones": zones,
        "name": name,
    }


def zone(number, waveform, root, keys, velocities=None, looped=False, gain=None):
    entry = {
        "ID": number,
        "enabled": True,
        "loop enabled": looped,
        "max key": keys[1],
        "min key": keys[0],
        "root key": root,
        "waveform": FIRST_WAVEFORM + waveform,
    }
    if velocities:
        entry["min vel"], entry["max vel"] = velocities
    if gain is not None:
        entry["gain"] = gain
    return entry


def preset(name, sample_names):
    parameters = [(900, 0.0), (901, 0.0), (902, 0.0), (903, 0.0)]
    data = struct.pack(">III", 0, 0, len(parameters))
    data += b"".join(struct.pack(">If", *parameter) for parameter in parameters)
    glass = [
        zone(1, 0, root=69, keys=(48, 96), velocities=(0, 79)),
        zone(2, 1, root=69, keys=(48, 96), velocities=(80, 127)),
    ]
    breath_below = [zone(1, 2, root=57, keys=(36, 71), looped=True, gain=-9.0)]
    return {
        "AU version": 1.0,
        "Instrument": {
            "Layers": [
                layer(0, "Glass", 0.0, 0.3, glass),
                layer(1, "Breath", 0.2, 0.5, breath_below),
            ],
            "name": "Default Instrument",
        },
        "coarse tune": 0,
        "data": data,
        "file-references": {
            f"Sample:{FIRST_WAVEFORM + number}": f"{AUTHORS_FOLDER}/{sample}"
            for number, sample in enumerate(sample_names)
        },
        "fine tune": 0.0,
        "gain": 0.0,
        "manufacturer": int.from_bytes(b"appl", "big"),
        "name": name,
        "output": 0,
        "pan": 0.0,
        "subtype": int.from_bytes(b"samp", "big"),
        "type": int.from_bytes(b"aumu", "big"),
        "version": 0,
        "voice count": 64,
    }


def main():
    here = pathlib.Path(__file__).parent
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else here / "glass"
    folder.mkdir(parents=True, exist_ok=True)
    sounds = {
        "glass-soft.wav": (strike(0.4), 0.5),
        "glass-hard.wav": (strike(1.0), 0.9),
        "breath.wav": (breath(), 0.6),
    }
    for name, (samples, peak) in sounds.items():
        write_wave(folder / name, samples, peak)
    (folder / "Glass.aupreset").write_bytes(plistlib.dumps(preset("Glass", sounds)))


if __name__ == "__main__":
    main()
