#!/usr/bin/env python3
"""examples/picture.py: its output, which must equal the picture in the documents."""

import json
import plistlib
import sys
import unittest
import xml.etree.ElementTree as ElementTree

from scene import PROJECT, SceneTest, run

SVG = "{http://www.w3.org/2000/svg}"
KEPT = PROJECT / "docs/glass.svg"


class Picture(SceneTest):
    def draw(self, lines):
        """Runs picture.py on report lines; it draws into pictures/."""
        return run(["sh", "-c", 'exec "$0" "$@" < lines', sys.executable,
                    PROJECT / "examples/picture.py", self.folder / "pictures"],
                   cwd=self.write(lines))

    def write(self, lines):
        (self.folder / "lines").write_bytes(lines)
        return self.folder

    def layers_drawn(self, layers):
        """The fill colours of the cells drawn for a state with these layers."""
        state = self.folder / "State.aupreset"
        state.write_bytes(plistlib.dumps({"Instrument": {"Layers": layers}}))
        line = json.dumps({"name": "<&>", "ok": True, "samples": 1, "stateFile": str(state),
                           "shape": {"zones": 1}})
        done = self.draw(line.encode() + b"\n")
        self.assertEqual(done.returncode, 0, done.stderr)
        picture = ElementTree.parse(self.folder / "pictures/State.svg").getroot()
        self.assertEqual(picture.tag, SVG + "svg")
        cells = picture.find(SVG + "g").findall(SVG + "rect")
        return [(int(cell.get("x")), int(cell.get("y")), int(cell.get("height")), cell.get("fill"))
                for cell in cells]

    def test_of_the_example_is_the_one_in_the_documents(self):
        lines = run(self.command(self.glass / "Glass.aupreset")).stdout
        done = self.draw(lines)
        self.assertEqual(done.returncode, 0, done.stderr)
        drawn = (self.folder / "pictures/Glass.svg").read_text(encoding="utf-8")
        self.assertEqual(drawn, KEPT.read_text(encoding="utf-8"))

    def test_of_the_example_names_both_layers(self):
        texts = [text.text for text in ElementTree.parse(KEPT).getroot().iter(SVG + "text")]
        self.assertEqual(texts[0], "Glass: 3 zones, 3 samples")
        self.assertEqual(texts[-2:], ["Glass", "Breath"])

    def test_has_one_colour_a_layer(self):
        zone = {"min key": 60, "max key": 61}
        cells = self.layers_drawn([{"Zones": [zone]}, {"Zones": [zone]}, {}])
        self.assertEqual(len(cells), 4)
        self.assertEqual(len({fill for *_, fill in cells}), 2)

    def test_draws_overlapping_zones_of_a_layer_once(self):
        low, high = {"max vel": 80}, {"min vel": 60}
        cells = self.layers_drawn([{"Zones": [dict(low, **{"min key": 1, "max key": 1}),
                                              dict(high, **{"min key": 1, "max key": 1})]}])
        self.assertEqual([height for _, _, height, _ in cells], [2 * 127])

    def test_draws_no_zone_that_is_off_or_empty(self):
        self.assertEqual(self.layers_drawn([{"Zones": [{"enabled": False},
                                                       {"min key": 9, "max key": 8}]}]), [])

    def test_passes_failed_imports_over(self):
        done = self.draw(run(self.command(self.folder / "a.txt")).stdout)
        self.assertEqual((done.returncode, done.stdout), (0, b""))
        self.assertIn(b"a: no picture, not an EXS instrument", done.stderr)


if __name__ == "__main__":
    unittest.main()
