#!/usr/bin/env python3
"""check_state.py STATE PRESET PACKAGE: checks that STATE is a binary property list that refers to
files in samples/ in PACKAGE, and that its instrument equals that of PRESET."""

import pathlib
import plistlib
import sys


def main():
    state_path, preset_path, package = map(pathlib.Path, sys.argv[1:])
    state = plistlib.loads(state_path.read_bytes(), fmt=plistlib.FMT_BINARY)
    preset = plistlib.loads(preset_path.read_bytes())
    faults = []
    for key, path in state["file-references"].items():
        if not path.startswith("samples/") or not (package / path).is_file():
            faults.append(f"{key} is {path}")
    if state["Instrument"] != preset["Instrument"]:
        faults.append("the instrument is another one")
    if set(state["file-references"]) != set(preset["file-references"]):
        faults.append("the references have other keys")
    print("\n".join(faults))
    return 1 if faults else 0


sys.exit(main())
