#!/usr/bin/env python3
"""Makes docs/library.png: the page of made_library.py's instruments, with one of them open.

usage: PYTHONPATH=tests/support LUMO_TOOL=... LUMO_LIBRARY=... tests/library/take_picture.py

LUMO_TOOL and LUMO_LIBRARY are the built programs. Needs Chromium.
"""

import subprocess
import tempfile
from pathlib import Path

import made_library
from browser import Browser
from library_scene import LIBRARY
from lumo_testing import PROJECT

# Opens an instrument with all kinds of layers among others that were imported.
OPEN = """(() => {
    const choose = (id, value) => {
        document.getElementById(id).value = value;
        document.getElementById(id).dispatchEvent(new Event("change"));
    };
    choose("show", "imported");
    choose("sort", "zones");
    const shown = rows.filter(row => row.isShown).slice(0, 12);
    shown.forEach(fill);
    shown[1].item.firstChild.click();
})()"""


def main():
    with tempfile.TemporaryDirectory() as temporary:
        folder = Path(temporary).resolve()
        made_library.make(folder)
        subprocess.run([LIBRARY, "--package", "Show.lumo", "--states", "Show.lumo/states",
                        "--search", "Moved", "--page", "library.html", "Instruments"], cwd=folder,
                       check=False)
        browser = Browser(temporary)
        browser.load(folder / "library.html")
        browser.run(OPEN)
        browser.picture(PROJECT / "docs/library.png", 1200, 1800)
        browser.close()


main()
