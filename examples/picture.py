#!/usr/bin/env python3
"""Draws each imported instrument: keys across, velocities up, one colour a layer.

usage: picture.py FOLDER < report-lines

Reads report lines, and for each that is ok the state that it names; writes one SVG per state into
FOLDER. Cells on which several layers sound are darker. Python's standard library is enough.
"""

import json
import plistlib
import sys
from pathlib import Path
from xml.sax.saxutils import escape

KEY, CELL = 7, 2                     # width of a key, height of a velocity, in pixels
LEFT, TOP, BOTTOM, ROW = 34, 30, 22, 16
COLOURS = ("#4e79a7", "#f28e2b", "#59a14f", "#b07aa1", "#e15759", "#76b7b2", "#9c755f", "#edc948")
BLACK_KEYS = (1, 3, 6, 8, 10)


def number(zone, key, default):
    """A zone's whole number, read as the tool reads it; a text or the like is the default."""
    value = zone.get(key, default)
    return int(value) if isinstance(value, (bool, int, float)) else default


def rectangle(zone):
    """Lowest and highest key and velocity that a zone covers; None when it covers nothing."""
    if not number(zone, "enabled", 1):
        return None
    low, high = max(number(zone, "min key", 0), 0), min(number(zone, "max key", 127), 127)
    soft, loud = max(number(zone, "min vel", 0), 1), min(number(zone, "max vel", 127), 127)
    return (low, high, soft, loud) if low <= high and soft <= loud else None


def runs(cells):
    """A layer's covered velocities of one key, as (lowest, highest) pairs."""
    found = []
    for velocity in sorted(cells):
        if found and found[-1][1] == velocity - 1:
            found[-1][1] = velocity
        else:
            found.append([velocity, velocity])
    return found


def bars(layer, colour):
    """A layer as one rectangle per key and run of velocities, zones merged, half transparent."""
    keys = [set() for _ in range(128)]
    for zone in layer.get("Zones", []):
        covered = rectangle(zone)
        if covered:
            low, high, soft, loud = covered
            for key in range(low, high + 1):
                keys[key].update(range(soft, loud + 1))
    for key, cells in enumerate(keys):
        for soft, loud in runs(cells):
            yield (f'<rect x="{LEFT + key * KEY}" y="{TOP + (127 - loud) * CELL}" '
                   f'width="{KEY}" height="{(loud - soft + 1) * CELL}" fill="{colour}"/>')


def outlines(layer, colour):
    """The edges of each zone, so that zones side by side can be told apart."""
    for zone in layer.get("Zones", []):
        covered = rectangle(zone)
        if covered:
            low, high, soft, loud = covered
            yield (f'<rect x="{LEFT + low * KEY}" y="{TOP + (127 - loud) * CELL}" '
                   f'width="{(high - low + 1) * KEY}" height="{(loud - soft + 1) * CELL}" '
                   f'fill="none" stroke="{colour}"/>')


def keyboard():
    """Grey columns behind the black keys, and a label under each C."""
    for key in range(128):
        if key % 12 in BLACK_KEYS:
            yield (f'<rect x="{LEFT + key * KEY}" y="{TOP}" width="{KEY}" '
                   f'height="{127 * CELL}" fill="#eeeeee"/>')
        if key % 12 == 0:
            at = f'x="{LEFT + key * KEY}" y="{TOP + 127 * CELL + 14}"'
            yield f"<text {at}>C{key // 12 - 2}</text>"
    for velocity in (1, 64, 127):
        yield f'<text x="4" y="{TOP + (128 - velocity) * CELL + 4}">{velocity}</text>'


def picture(report, layers):
    """The whole SVG of one instrument."""
    height = TOP + 127 * CELL + BOTTOM + ROW * len(layers) + 6
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" width="{LEFT + 128 * KEY + 10}" '
           f'height="{height}" font-family="sans-serif" font-size="11">')
    yield '<rect width="100%" height="100%" fill="white"/>'
    yield (f'<text x="{LEFT}" y="19" font-size="14">{escape(report["name"])}: '
           f'{report["shape"]["zones"]} zones, {report["samples"]} samples</text>')
    yield from keyboard()
    yield '<g fill-opacity="0.55">'
    for index, layer in enumerate(layers):
        yield from bars(layer, COLOURS[index % len(COLOURS)])
    yield '</g>'
    for index, layer in enumerate(layers):
        yield from outlines(layer, COLOURS[index % len(COLOURS)])
    for index, layer in enumerate(layers):
        y = TOP + 127 * CELL + BOTTOM + ROW * index
        yield (f'<rect x="{LEFT}" y="{y}" width="10" height="10" '
               f'fill="{COLOURS[index % len(COLOURS)]}" fill-opacity="0.55"/>')
        name = layer.get("name") or f"layer {index + 1}"
        yield f'<text x="{LEFT + 16}" y="{y + 9}">{escape(str(name))}</text>'
    yield '</svg>'


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    folder = Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for line in sys.stdin.buffer:
        report = json.loads(line.decode("utf-8", "replace"))
        if not report["ok"]:
            print(f'{report["name"]}: no picture, {report["error"]}', file=sys.stderr)
            continue
        state = Path(report["stateFile"])
        layers = plistlib.loads(state.read_bytes()).get("Instrument", {}).get("Layers", [])
        target = folder / (state.stem + ".svg")
        target.write_text("\n".join(picture(report, layers)) + "\n", encoding="utf-8")
        print(target)


if __name__ == "__main__":
    main()
