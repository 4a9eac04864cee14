#!/usr/bin/env python3
"""Compares the documents with each other and the code: docs/report-line.md, its schema and the
sources have the same keys and errors; docs/relinking.md lists the interposed functions; links lead
to existing files; every page is in the index."""

import json
import re
import unittest

from lumo_testing import PROJECT

PAGE = (PROJECT / "docs/report-line.md").read_text(encoding="utf-8")
SCHEMA = json.loads((PROJECT / "docs/report-line.schema.json").read_text(encoding="utf-8"))


def first_column(heading):
    """The texts in code style in the first column of a section's tables."""
    section = PAGE.split(f"\n## {heading}\n")[1].split("\n## ")[0]
    return re.findall(r"^\| `([^`]+)`", section, re.MULTILINE)


def fixed_part(text):
    """An error without its variable part: an OSStatus, or FILE, PATH or REASON after a colon."""
    return re.sub(r"(?<=: )(FILE|PATH|REASON)$| \(OSStatus .*\)$", "", text)


def documented_errors():
    return {fixed_part(text) for text in first_column("Errors")}


def schema_errors():
    options = SCHEMA["$defs"]["error"]["anyOf"]
    texts = set(options[0]["enum"])
    for option in options[1:]:
        texts.add(fixed_part(re.sub(r"\\(.)", r"\1", option["pattern"].strip("^$"))))
    return texts


def literals(expression):
    """The string literals of a C++ expression; adjacent ones are joined."""
    return ["".join(re.findall(r'"((?:[^"\\]|\\.)*)"', run))
            for run in re.findall(r'"(?:[^"\\]|\\.)*"(?:\s*"(?:[^"\\]|\\.)*")*', expression)]


def errors_in_the_code():
    """The first literal of every text assigned to an error; reasons get the prefix "check: "."""
    found = set()
    for source in sorted((PROJECT / "exs").glob("*.cpp")):
        code = source.read_text(encoding="utf-8")
        for text in re.findall(r"\berror\s*=\s*([^;]*\"[^;]*);", code):
            prefix = "check: " if source.name == "package_state.cpp" else ""
            found.add(prefix + literals(text)[0].removesuffix(" (OSStatus "))
    return found - {"check: "}


def pages():
    return [*PROJECT.glob("*.md"), *(PROJECT / "docs").glob("*.md")]


class ReportLine(unittest.TestCase):
    def test_errors_of_page_and_code_are_the_same(self):
        self.assertEqual(documented_errors(), errors_in_the_code())

    def test_errors_of_page_and_schema_are_the_same(self):
        self.assertEqual(documented_errors(), schema_errors())

    def test_keys_of_page_and_schema_are_the_same(self):
        shape = SCHEMA["properties"]["shape"]["required"]
        layer = SCHEMA["$defs"]["layer"]["required"]
        keys = [key for key in SCHEMA["required"] if key != "shape"]
        keys += ["shape." + key for key in shape]
        keys += ["\u2026layers[]." + key for key in layer]
        self.assertEqual(first_column("Fields"), keys)


def listed_functions(heading):
    """The functions in the table of a section of docs/relinking.md, in alphabetical order."""
    page = (PROJECT / "docs/relinking.md").read_text(encoding="utf-8")
    section = page.split(f"\n### {heading}\n")[1].split("\n### ")[0]
    rows = re.findall(r"^\| [^|`]+ \|(.*)\|$", section, re.MULTILINE)
    return sorted(re.findall(r"`([^`]+)`", "".join(rows)))


def functions_on_linux():
    """The names that relink/exports_elf.map exports with C linkage."""
    exports = (PROJECT / "relink/exports_elf.map").read_text(encoding="utf-8")
    c_names = re.sub(r'/\*.*?\*/|extern "C\+\+" \{.*?\};', "", exports, flags=re.DOTALL)
    return sorted(re.findall(r"\b(\w+);", c_names))


def functions_on_a_mac():
    """The originals of the pairs in relink/interpose_macos.cpp, by the names of their symbols."""
    code = (PROJECT / "relink/interpose_macos.cpp").read_text(encoding="utf-8")
    symbols = dict(re.findall(r'(\w+)\([^;]*\) __asm\("_([^"]+)"\)', code))
    pairs = re.findall(r"^LUMO_INTERPOSE\((\w+)\)$", code, re.MULTILINE)
    return sorted(symbols.get(name, name) for name in pairs)


class Relinking(unittest.TestCase):
    def test_functions_on_linux_are_those_that_the_library_exports(self):
        self.assertIn("openat64", functions_on_linux())
        self.assertEqual(listed_functions("On Linux"), functions_on_linux())

    def test_functions_on_a_mac_are_those_that_are_interposed(self):
        self.assertIn("open$NOCANCEL", functions_on_a_mac())
        self.assertEqual(listed_functions("On a Mac"), functions_on_a_mac())


class Documents(unittest.TestCase):
    def test_links_lead_to_files(self):
        for page in pages():
            for link in re.findall(r"\]\((?!https?:)([^)#]+)", page.read_text(encoding="utf-8")):
                self.assertTrue((page.parent / link).exists(), f"{page.name}: {link}")

    def test_readme_shows_the_picture(self):
        self.assertIn("](docs/library.png)", (PROJECT / "README.md").read_text(encoding="utf-8"))

    def test_index_has_every_page(self):
        index = (PROJECT / "docs/README.md").read_text(encoding="utf-8")
        for page in (PROJECT / "docs").iterdir():
            if page.suffix in (".md", ".json") and page.name != "README.md":
                self.assertIn(f"({page.name})", index)

    def test_files_that_the_architecture_names_exist(self):
        text = (PROJECT / "docs/architecture.md").read_text(encoding="utf-8")
        folders = ("exs", "platform", "relink", "tools")
        known = {file.name for folder in folders for file in (PROJECT / folder).rglob("*")}
        for name in re.findall(r"`([\w./-]+(?:\.\w+|/))`", text):
            self.assertTrue((PROJECT / name).exists() or name in known or name == ".exs", name)


if __name__ == "__main__":
    unittest.main()
