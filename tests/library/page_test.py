#!/usr/bin/env python3
"""The page of lumo-import-library in a real browser."""

import fcntl
import html.parser
import json
import os
import plistlib
import re
import tempfile
import time
import unittest

from browser import Browser, find_browser
from library_scene import LIBRARY, LibraryTest

FIRST_WAVEFORM = 0x10000000
F_SETPIPE_SZ = 1031  # of Linux; the module of Debian 12's Python has it, those before do not


def state(layers):
    """A state with these layers, each a dictionary with a list of (low, high, soft, loud)."""
    return plistlib.dumps({"Instrument": {"Layers": [
        {**{key: value for key, value in layer.items() if key != "areas"},
         "Zones": [dict(zip(("min key", "max key", "min vel", "max vel"), area))
                   for area in layer["areas"]]} for layer in layers]}}, fmt=plistlib.FMT_BINARY)


def report(name, **values):
    """The report line of an imported instrument; `values` replace its defaults."""
    line = {"name": name, "source": f"lib/{name}.exs", "ok": True, "error": "", "relinked": [],
            "unresolved": [], "appleLibrary": [], "samples": 2, "sampleBytes": 2000,
            "copiedBytes": 1000, "stateFile": "", "loadMs": 0.1,
            "shape": {"zones": 1, "maxStack": 1, "stackedPercent": 0.0, "lowestKey": 36,
                      "highestKey": 96, "layers": [{"name": "", "zones": 1, "loopedZones": 0,
                                                    "controllerChosen": False,
                                                    "onRelease": False}]}}
    line.update(values)
    return line


def failed(name, error, **values):
    empty = {"zones": 0, "maxStack": 1, "stackedPercent": 0.0, "lowestKey": 127, "highestKey": 0,
             "layers": []}
    return report(name, ok=False, error=error, samples=0, shape=empty, **values)


def write_lines(path, lines):
    text = "".join(json.dumps(line, ensure_ascii=False) + "\n" for line in lines)
    path.write_bytes(text.encode("utf-8", "surrogateescape"))


class References(html.parser.HTMLParser):
    """The elements of a page, and the URLs that it would fetch."""

    def __init__(self):
        super().__init__()
        self.tags, self.fetched = [], []

    def handle_starttag(self, tag, attributes):
        self.tags.append(tag)
        self.fetched += [value for name, value in attributes
                         if name in ("src", "href") and value != "data:,"]


class PageTest(LibraryTest):
    def make_page(self, lines, *options):
        """The page for these report lines. Bytes that are not UTF-8 are encoded by
        "surrogateescape"."""
        write_lines(self.folder / "lines", lines)
        page = self.folder / "page.html"
        done = self.run_library(words=[str(LIBRARY), "--from", "lines", "--page", "page.html",
                                       *options])
        self.assertIn(done.returncode, (0, 2), done.stderr)
        self.assertIn(b"open page.html in a browser", done.stdout)
        return page


class AsAFile(PageTest):
    def test_needs_nothing_else(self):
        page = self.make_page([report("a")]).read_text()
        references = References()
        references.feed(page)
        self.assertEqual(references.fetched, [])
        self.assertEqual(references.tags.count("script"), 2)
        self.assertFalse(re.search(r"@import|url\((?!#)|\bfetch\(|XMLHttpRequest|import\(", page))
        self.assertIn("default-src 'none'", page)

    def test_lets_no_name_end_an_element(self):
        name = "</script><script>alert(1)</script><!--"
        page = self.make_page([report(name, relinked=[{"from": f"/{name}/a", "to": f"b/{name}"}])])
        references = References()
        references.feed(page.read_text())
        self.assertEqual(references.tags.count("script"), 2)
        self.assertEqual(page.read_text().count("<!--"), 0)

    def test_replaces_the_one_before_and_leaves_nothing_beside_it(self):
        os.link(self.make_page([report("a")]), self.folder / "first.html")
        before = set(os.listdir(self.folder))
        self.make_page([report("b")])
        self.assertEqual(set(os.listdir(self.folder)), before)
        self.assertIn('"b"', (self.folder / "page.html").read_text())
        self.assertIn('"a"', (self.folder / "first.html").read_text())  # not written over

    def test_that_cannot_be_written_is_reported_before_anything_is_imported(self):
        self.use_fake_tool()
        self.make("a.exs")
        (self.folder / "folder").mkdir()
        for path, reason in (("none/page.html", b"No such file or directory"),
                             ("folder", b"Is a directory")):
            done = self.run_library("--page", path, "lib")
            self.expect(done, 1)
            self.assertIn(reason, done.stderr)
        self.assertEqual(self.calls(), [])
        write_lines(self.folder / "lines", [report("a")])
        done = self.run_library(words=[str(LIBRARY), "--from", "lines", "--page", "none/page.html"])
        self.expect(done, 1)
        self.assertEqual((done.stdout, done.stderr),
                         (b"", b"lumo-import-library: none/page.html: No such file or directory\n"))

    def test_that_could_not_be_written_to_a_device_leaves_the_device(self):
        self.use_fake_tool()
        self.make("a.exs")
        write_lines(self.folder / "lines", [report("a")])
        link = self.folder / "page.html"
        link.symlink_to("/dev/full")
        for done in (self.run_library("--page", link.name, "lib"),
                     self.run_library(words=[str(LIBRARY), "--from", "lines", "--page",
                                             link.name])):
            self.expect(done, 3)
            self.assertEqual(done.stderr, b"lumo-import-library: page.html: No space left on "
                                          b"device\n")
            self.assertIn(b"1 instrument: 1 imported, 0 failed\n", done.stdout)
            self.assertNotIn(b"in a browser", done.stdout)
            self.assertTrue(link.is_symlink())

    def test_goes_into_a_pipe_that_is_there(self):
        write_lines(self.folder / "lines", [report("a")])
        os.mkfifo(self.folder / "page.html")
        reader = os.open(self.folder / "page.html", os.O_RDONLY | os.O_NONBLOCK)
        fcntl.fcntl(reader, F_SETPIPE_SZ, 1 << 20)  # room for the whole page
        self.expect(self.run_library(words=[str(LIBRARY), "--from", "lines", "--page",
                                            "page.html"]), 0)
        with open(reader, "rb") as pipe:
            self.assertIn(b'"a.exs"', pipe.read())
        self.assertTrue((self.folder / "page.html").is_fifo())
        self.assertFalse((self.folder / "page.html.part").exists())

    def test_has_all_of_a_large_instrument(self):
        areas = [(key, key, 1 + 4 * soft, 4 + 4 * soft) for key in range(128) for soft in range(8)]
        (self.folder / "large.aupreset").write_bytes(state(
            [{"name": f"Layer {i}", "areas": areas} for i in range(20)]))
        moved = [{"from": f"/old/{i}/a.wav", "to": f"new/{i}/b.wav"} for i in range(500)]
        gone = [f"/gone/{i}/c.wav" for i in range(500)]
        page = self.make_page([report("Large", stateFile="large.aupreset", relinked=moved,
                                      unresolved=gone, appleLibrary=gone[:50])]).read_text()
        data = json.loads(re.search(r'id="data">(.*?)</script>', page, re.DOTALL).group(1))
        [one] = data["instruments"]
        *_, layers, relinked, unresolved, apple = one
        self.assertEqual([len(layer[4]) for layer in layers], [4 * len(areas)] * 20)
        self.assertEqual([len(relinked), len(unresolved), len(apple)], [2000, 1000, 100])
        self.assertEqual({data["folders"][number] + name for number, name in
                          zip(unresolved[::2], unresolved[1::2])}, set(gone))

    def test_has_an_instrument_a_line_with_all_its_values(self):
        cause = "a sample wasn't found"
        areas = [(48, 59, 1, 127)] * 500 + [(36, 47, 64, 127), (36, 47, 1, 63), (36, 40, 1, 63)]
        (self.folder / "st").mkdir()
        (self.folder / "st/a.aupreset").write_bytes(state([
            {"name": "Low", "areas": areas}, {"areas": [(60, 71, 1, 127)], "trigger mode": 12}]))
        layer = {"name": "Far", "zones": 3, "loopedZones": 1, "controllerChosen": True,
                 "onRelease": True}
        shape = {"zones": 7, "maxStack": 3, "stackedPercent": 12.5, "lowestKey": 21,
                 "highestKey": 108, "layers": [layer]}
        page = self.make_page([
            report("A", source="lib/a.exs", samples=3, sampleBytes=5000, copiedBytes=4000,
                   stateFile="st/a.aupreset", loadMs=1.25, shape=shape,
                   relinked=[{"from": "/Old/one.wav", "to": "new/one.wav"},
                             {"from": "/Old/TWO.WAV", "to": "new/two.wav"}]),
            failed("B", f"{cause}: x.wav", source="lib/b.exs",
                   unresolved=["/Old/x.wav"], appleLibrary=["/Library/y.caf"]),
            report("C", source="lib/c.exs", shape=shape)]).read_text()
        data = re.search(r'id="data">(.*?)</script>', page, re.DOTALL).group(1)
        made = json.loads(data)["made"]
        self.assertRegex(made, r"^\d{4}-\d\d-\d\d \d\d:\d\d$")
        self.assertEqual(data.strip().replace(made, "MADE").split("\n"), [
            '{"package":"","made":"MADE","samples":5,"copied":6000,"seconds":null,"before":0,'
            f'"left":0,"unreadable":0,"causes":[["{cause}",'
            '"add the folder that has them with `--search`",1]],',
            '"missing":[["/Old",1]],',
            '"folders":["lib/","st/","/Old/","new/","","/Library/"],',
            '"instruments":[["A",0,"a.exs",-1,"",3,5000,4000,1,"a.aupreset",1.3,7,3,12.5,21,108,'
            '[["Low",0,503,0,[36,40,1,63,36,47,1,63,36,47,64,127,48,59,1,127]],'
            '["",2,1,0,[60,71,1,127]]],[2,"one.wav",3,0,2,"TWO.WAV",3,"two.wav"],[],[]],',
            f'["B",0,"b.exs",0,"{cause}: x.wav",0,2000,1000,4,"",0.1,0,1,0.0,127,0,'
            '[],[],[2,"x.wav"],[5,"y.caf"]],',
            '["C",0,"c.exs",-1,"",2,2000,1000,4,"",0.1,7,3,12.5,21,108,[["Far",3,3,1,null]],'
            '[],[],[]]]}'])

    def test_has_the_totals_of_an_import(self):
        self.use_fake_tool(b="fail no", c="signal 9", d="signal 9", e="signal 9")
        self.make(*[f"{name}.exs" for name in "abcdefg"])
        (self.library / "gone.exs").symlink_to("nowhere")
        write_lines(self.folder / "lines", [report("a")])
        self.expect(self.run_library("--page", "page.html", "--continue", "lines", "lib"), 3)
        page = (self.folder / "page.html").read_text()
        data = json.loads(re.search(r'id="data">(.*?)</script>', page, re.DOTALL).group(1))
        self.assertIsInstance(data["seconds"], float)
        self.assertEqual({key: data[key] for key in ("package", "samples", "copied", "before",
                                                     "left", "unreadable")},
                         {"package": "Show.lumo", "samples": 0, "copied": 1000, "before": 1,
                          "left": 2, "unreadable": 1})

    def test_of_10000_instruments_has_2_kb_for_each(self):
        page = self.make_page(many_reports(self.folder, 10000))
        self.assertLess(page.stat().st_size, 10000 * 2048)


def many_reports(folder, count):
    """Report lines of instruments with 8 moved samples and 30 zones."""
    states = []
    for i in range(100):
        areas = [(20 + 3 * zone, 22 + 3 * zone, 1 + i, 127) for zone in range(30)]
        path = folder / f"state {i}.aupreset"
        path.write_bytes(state([{"name": f"Layer {i}", "areas": areas}]))
        states.append(str(path))
    kinds = ("Violin", "Viola", "Cello", "Bass", "Flute", "Oboe", "Clarinet", "Horn")
    for i in range(count):
        name = f"{kinds[i % 8]} Legato {i:05}"
        place = f"{kinds[i % 8]} {i // 100}"
        moved = [{"from": f"/Volumes/Old Samples/Orchestra/{place}/{name} C{k}.wav",
                  "to": f"/srv/library/samples/Orchestra/{place}/{name} C{k}.wav"}
                 for k in range(8)]
        line = report(name, source=f"Instruments/Orchestra/{place}/{name}.exs", relinked=moved,
                      stateFile=states[i % 100], samples=8, sampleBytes=8000 + i)
        if i % 20 == 0:
            line = failed(name, f"a sample wasn't found: {name} C0.wav",
                          source=line["source"], unresolved=[pair["from"] for pair in moved])
        yield line


@unittest.skipUnless(find_browser(), "there is no Chromium here")
class InABrowser(PageTest):
    @classmethod
    def setUpClass(cls):
        cls.profile = tempfile.TemporaryDirectory()
        cls.browser = Browser(cls.profile.name)

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()
        cls.profile.cleanup()

    def open_page(self, lines):
        self.browser.media()
        self.browser.load(self.make_page(lines))
        self.browser.wait_for("document.querySelector('#count').textContent !== ''")

    def names(self):
        """The names in the list from top to bottom, including rows that are not filled yet."""
        return self.browser.run("rows.filter(r => !r.item.hidden).map(r => r.one[NAME])")

    def text(self, selector):
        return self.browser.run(f"document.querySelector({selector!r}).innerText")

    def small_library(self):
        """The lines of a small library with one instrument of each kind."""
        (self.folder / "a.aupreset").write_bytes(state([
            {"name": "Low", "areas": [(36, 47, 1, 63), (48, 59, 1, 127), (48, 59, 1, 127)]},
            {"areas": [(60, 71, 1, 127)], "trigger mode": 12},
            {"name": "Wheel", "areas": [(0, 127, 1, 127), (100, 110, 1, 127)], "sel ctrlr": 1,
             "min key": 40, "max key": 80, "max vel": 90}]))
        return [
            report("Alpha 10", stateFile="a.aupreset", samples=3, sampleBytes=5000,
                   relinked=[{"from": "/Volumes/Old/one.wav", "to": "new/one.wav"},
                             {"from": "/Volumes/Old/TWO.WAV", "to": "new/two.wav"}]),
            report("Alpha 9", samples=9, sampleBytes=10),
            failed("Gone", "a sample wasn't found: x.wav",
                   unresolved=["/Volumes/Gone/Kit/x.wav", "/Volumes/Gone/Kit/y.wav"]),
            failed("Lost", "a sample wasn't found: z.wav", unresolved=["/Volumes/Gone/Kit/z.wav"]),
            failed("Apple's", "it uses samples from Apple's sound library: Lumo imports only your "
                   "own or exported instruments",
                   appleLibrary=["/Library/Audio/Apple Loops/a.caf"]),
        ]

    def test_loads_without_a_complaint(self):
        self.open_page(self.small_library())
        self.browser.run("rows.forEach(row => { fill(row); toggle(row); })")
        self.assertEqual(self.browser.complaints(), [])

    def test_shows_totals_and_failures_first_with_cause_and_remedy(self):
        self.open_page(self.small_library())
        totals = self.browser.run(
            "[...document.querySelectorAll('#totals div')].map(d => d.innerText.split('\\n'))")
        self.assertEqual({name: value for value, name in totals} if totals[0][0][0].isdigit() else
                         dict(totals), {"imported": "2", "failed": "3", "samples": "12",
                                        "copied": "5.0 kB"})
        self.assertEqual(self.text("#causes").split("\n"), [
            "2", "a sample wasn't found", "To do: add the folder that has them with --search",
            "1",
            "it uses samples from Apple's sound library: Lumo imports only your own or exported "
            "instruments", "To do: in Logic or MainStage, save the instrument with its samples, "
            "then import that copy"])
        self.assertEqual(self.text("#missing").split("\n"), ["3", "/Volumes/Gone/Kit"])
        self.assertEqual(self.names(), ["Gone", "Lost", "Apple's", "Alpha 9", "Alpha 10"])

    def test_filters_names_paths_and_errors(self):
        self.open_page(self.small_library())
        for typed, found in (("alpha", ["Alpha 9", "Alpha 10"]), ("TWO.wav", ["Alpha 10"]),
                             ("new/one", ["Alpha 10"]), ("volumes gone", ["Gone", "Lost"]),
                             ("apple loops", ["Apple's"]), ("wasn't found", ["Gone", "Lost"]),
                             ("lib/alpha 9.exs", ["Alpha 9"]), ("nowhere", [])):
            self.browser.run("document.querySelector('#filter').focus()")
            self.browser.type(typed)
            self.assertEqual(self.names(), found, typed)
            self.assertEqual(self.text("#count"), f"{len(found)} of 5")
            is_hidden = self.browser.run("document.querySelector('#none').hidden")
            self.assertEqual(is_hidden, bool(found))
            self.browser.press("Escape")
            self.assertEqual(len(self.names()), 5)

    def choose(self, select, value):
        self.browser.run(f"(() => {{ const box = document.querySelector('#{select}'); box.value = "
                         f"'{value}'; box.dispatchEvent(new Event('change')); }})()")

    def test_shows_the_failed_or_the_imported_alone(self):
        self.open_page(self.small_library())
        self.choose("show", "failed")
        self.assertEqual(self.names(), ["Gone", "Lost", "Apple's"])
        self.choose("show", "imported")
        self.assertEqual(self.names(), ["Alpha 9", "Alpha 10"])

    def test_shows_one_cause_alone(self):
        self.open_page(self.small_library())
        click = "document.querySelectorAll('#causes button')[1].click()"
        self.browser.run(click)
        self.assertEqual(self.names(), ["Apple's"])
        self.browser.run(click)
        self.assertEqual(len(self.names()), 5)

    def test_sorts(self):
        shape = report("")["shape"]
        self.open_page([
            report("A 10", source="z/a.exs", samples=3, sampleBytes=20, loadMs=0.5),
            report("A 9", source="y/9.exs", samples=9, sampleBytes=10, loadMs=0.2,
                   shape={**shape, "zones": 7}),
            report("b", source="y/10.exs", samples=1, sampleBytes=30, loadMs=0.3,
                   shape={**shape, "zones": 5}),
            failed("a 8", "a sample wasn't found: z.wav", source="x/1.exs", sampleBytes=0,
                   loadMs=0)])
        orders = {"outcome": ["a 8", "A 9", "A 10", "b"], "name": ["a 8", "A 9", "A 10", "b"],
                  "path": ["a 8", "A 9", "b", "A 10"], "samples": ["A 9", "A 10", "b", "a 8"],
                  "bytes": ["b", "A 10", "A 9", "a 8"], "zones": ["A 9", "b", "A 10", "a 8"],
                  "load": ["A 10", "b", "A 9", "a 8"]}
        self.assertEqual(self.browser.run("[...document.querySelector('#sort').options]"
                                          ".map(option => option.value)"), list(orders))
        for order, names in reversed(orders.items()):
            self.choose("sort", order)
            listed = self.browser.run("[...document.querySelectorAll('#list > li')].map("
                                      "li => rowOf.get(li).one[NAME])")
            self.assertEqual((listed, self.names()), (names, names), order)

    def test_is_used_by_keyboard(self):
        self.open_page(self.small_library())
        focused = "document.activeElement.id || document.activeElement.innerText.split('\\n')[0]"
        self.browser.press("/")
        self.assertEqual(self.browser.run(focused), "filter")
        self.browser.type("a")
        self.assertEqual(self.browser.run("document.querySelector('#filter').value"), "a")
        self.browser.press("Escape")
        self.browser.press("ArrowDown")
        self.assertEqual(self.browser.run(focused), "Gone")
        self.browser.press("ArrowDown")
        self.assertEqual(self.browser.run(focused), "Lost")
        self.browser.press("End")
        self.assertEqual(self.browser.run(focused), "Alpha 10")
        self.browser.press("Enter")
        self.browser.wait_for("document.activeElement.getAttribute('aria-expanded') === 'true'")
        self.assertIn("/Volumes/Old/one.wav", self.text("li.open"))
        self.browser.press("Enter")
        self.browser.wait_for("document.querySelector('li.open') === null")
        self.browser.press("Home")
        self.assertEqual(self.browser.run(focused), "Gone")

    def open(self, name):
        wanted = json.dumps(name)
        self.browser.run(f"(() => {{ const row = rows.find(r => r.one[NAME] === {wanted}); "
                         "fill(row); row.item.firstChild.click(); })()")
        return self.text("li.open")

    def test_shows_what_was_found_where(self):
        self.open_page(self.small_library())
        text = self.open("Alpha 10").split("\n")
        at = text.index("Found elsewhere (2)")
        self.assertEqual(text[at:], ["Found elsewhere (2)", "Recorded", "Found",
                                     "/Volumes/Old/one.wav",
                                     "new/one.wav", "/Volumes/Old/TWO.WAV", "new/two.wav"])
        self.assertIn("3, 5.0 kB, of which 1.0 kB copied by this import", text)

    def test_shows_what_was_not_found_and_what_is_apples(self):
        self.open_page(self.small_library())
        text = self.open("Gone")
        for words in ("a sample wasn't found: x.wav", "To do: add the folder", "Not found (2)",
                      "/Volumes/Gone/Kit/y.wav"):
            self.assertIn(words, text)
        self.browser.run("document.querySelector('li.open .row').click()")
        self.assertIn("/Library/Audio/Apple Loops/a.caf", self.open("Apple's"))

    def test_draws_the_key_map_of_the_written_state(self):
        self.open_page(self.small_library())
        self.open("Alpha 10")
        drawn = self.browser.run("[...document.querySelectorAll("
                                 "'li.open .big > g > path:not(.rule)')]"
                                 ".map(p => [p.getAttribute('d'), p.getAttribute('class'), "
                                 "p.getAttribute('style'), p.getAttribute('fill').split('-')[0]])")
        # The areas within a layer's limits, 8 units for each key and 2 for each velocity; equal
        # ones occur once.
        low = "M288 128h96v126H288zM384 0h96v254H384z"
        wheel = "M320 74h328v180H320z"
        self.assertEqual([(one[0], one[1], one[3]) for one in drawn],
                         [(low, "", "currentColor"), (wheel, "marked", "url(#pattern"),
                          ("M480 0h96v254H480z", "marked", "url(#pattern")])
        self.assertEqual(len({one[2].split(";")[0] for one in drawn}), 3)
        legend = self.text("li.open .legend").split("\n")
        self.assertEqual(legend, ["Low", "3 zones", "Wheel", "2 zones, chosen by a controller",
                                  "Layer 2", "1 zone, on release"])

    def test_says_when_a_state_cannot_be_read(self):
        self.open_page([report("Moved away", stateFile="gone.aupreset")])
        self.assertIn("There is no key map: the state could not be read.", self.open("Moved away"))

    def test_draws_maps_when_they_come_into_view(self):
        self.open_page(many_reports(self.folder, 1000))
        self.browser.wait_for("document.querySelectorAll('.row').length > 5")
        drawn = self.browser.run("document.querySelectorAll('.thumb').length")
        self.assertLess(drawn, 200)
        self.browser.run("rows[900].item.scrollIntoView()")
        self.browser.wait_for("rows[900].item.querySelector('.thumb') !== null")

    def test_has_a_dark_form_and_one_for_paper(self):
        self.open_page(self.small_library())
        ground = "getComputedStyle(document.body).backgroundColor"
        self.browser.media(prefers_color_scheme="light")
        self.assertEqual(self.browser.run(ground), "rgb(255, 255, 255)")
        self.browser.media(prefers_color_scheme="dark")
        dark = [int(part) for part in re.findall(r"\d+", self.browser.run(ground))]
        self.assertLess(max(dark), 64)
        self.browser.media("print", prefers_color_scheme="dark")
        self.assertEqual(self.browser.run(ground), "rgb(255, 255, 255)")
        self.assertEqual(self.browser.run("getComputedStyle(tools).display"), "none")

    def test_fills_all_of_the_list_for_paper(self):
        self.open_page(many_reports(self.folder, 300))
        self.assertLess(self.browser.run("document.querySelectorAll('.row').length"), 300)
        self.browser.run("window.dispatchEvent(new Event('beforeprint'))")
        self.assertEqual(self.browser.run("document.querySelectorAll('.row').length"), 300)

    def test_shows_hostile_names_as_text(self):
        names = ["</script><script>window.harm = 1</script>",
                 "<img src=x onerror='window.harm = 1'>",
                 "\"><b>bold", "'; window.harm = 1; '", "\x1b[31mred\x07", "right\u202eexe.exs",
                 "caf\udce9", "line\u2028end", "__proto__", "{data}{script}"]
        imported = [report(name, relinked=[{"from": f"/old/{name}", "to": f"new/{name}"}])
                    for name in names]
        self.open_page(imported + [failed(f"{name}!", f"odd: {name}", unresolved=[f"/x/{name}/s"])
                                   for name in names])
        self.browser.run("rows.forEach(row => { fill(row); toggle(row); })")
        self.assertEqual(self.browser.run("window.harm || 0"), 0)
        self.assertEqual(self.browser.run("document.querySelectorAll('img, b').length"), 0)
        shown = set(self.names())
        for name in names[:4] + names[8:]:
            self.assertLessEqual({name, name + "!"}, shown)
        for name in ("\\x1b[31mred\\x07", "right\\u202eexe.exs", "caf\\xe9", "line\\u2028end"):
            self.assertLessEqual({name, name + "!"}, shown)
        self.assertEqual(self.browser.complaints(), [])

    def test_of_10000_instruments_can_be_used(self):
        page = self.make_page(many_reports(self.folder, 10000))
        began = time.monotonic()
        self.browser.load(page)
        self.browser.wait_for("document.querySelectorAll('.row').length > 0")
        loaded, keystrokes, busy = time.monotonic() - began, [], [self.browser.busy()]
        self.browser.run("document.querySelector('#filter').focus()")
        for key in "viola 7":
            keystrokes.append(self.browser.run(f"""new Promise(done => {{
                const box = document.querySelector('#filter'), began = performance.now();
                box.value += {key!r};
                box.dispatchEvent(new Event('input'));
                requestAnimationFrame(() => setTimeout(() => done(performance.now() - began)));
            }})"""))
            busy.append(self.browser.busy())
        self.assertEqual(len(self.names()), sum("viola" in name.lower() and "7" in name for name in
                                                self.browser.run("rows.map(r => searchText(r))")))
        steps = [1000 * (after - before) for before, after in zip(busy, busy[1:])]
        print(f"\n10,000 instruments: usable after {loaded:.2f} s ({busy[0]:.2f} s of CPU), a "
              f"keystroke in the filter took at most {max(keystrokes):.0f} ms "
              f"({max(steps):.0f} ms of "
              "CPU)")


if __name__ == "__main__":
    unittest.main()
