#!/usr/bin/env python3
"""Imports instruments and prints a sentence about each as soon as its report line arrives.

usage: consume.py TOOL SHOW.lumo STATES SEARCH INSTRUMENT...
"""

import json
import subprocess
import sys


def show(report):
    """Prints one sentence about one instrument, and the samples that were not found."""
    if report["ok"]:
        shape = report["shape"]
        print(f"{report['name']}: {report['samples']} samples, {shape['zones']} zones, "
              f"{report['copiedBytes']} bytes copied, state {report['stateFile']}", flush=True)
    else:
        print(f"{report['name']}: {report['error']}", flush=True)
        for path in report["unresolved"]:
            print(f"  not found: {path}", flush=True)


def main():
    if len(sys.argv) < 6:
        sys.exit(__doc__)
    tool, package, states, search, *instruments = sys.argv[1:]
    command = [tool, "--package", package, "--states", states, "--search", search, *instruments]
    failed = lines = 0
    # Lines are decoded with replacement characters: a path may contain bytes that are not UTF-8.
    with subprocess.Popen(command, stdout=subprocess.PIPE, encoding="utf-8",
                          errors="replace") as process:
        for line in process.stdout:  # each line arrives before the next import begins
            report = json.loads(line)
            show(report)
            lines += 1
            failed += not report["ok"]
    if process.returncode != 0 or lines != len(instruments):
        sys.exit(f"the run ended early: {lines} of {len(instruments)} lines, "
                 f"status {process.returncode}")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
