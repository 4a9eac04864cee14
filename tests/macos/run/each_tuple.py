#!/usr/bin/env python3
"""Checks that each tuple of the library's interpose section is needed: omits one tuple at a time
under macos-run, and exactly the tests of that function must fail.

usage: each_tuple.py RUNNER TEST_PROGRAM LIBRARY
"""

import os
import re
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "script"))
import macho  # noqa: E402

# Their calls reach open$NOCANCEL as well, so no test fails without them.
SECOND_NET = {"fopen", "fopen_extended", "opendir"}


def functions_of(library):
    """The interposed functions, named as in their tests, in the order of the tuples."""
    image, = macho.images(Path(library).read_bytes())
    section, = [one for one in image.sections if one.name == "__interpose"]
    names = [image.binds[section.address + at + 8].name for at in range(0, section.size, 16)]
    return [name.removeprefix("_").replace("$INODE64", "").replace("$NOCANCEL", "_nocancel")
            .replace("$DARWIN_EXTSN", "_extended") for name in names]


def failed_tests(runner, program, environment):
    """The failed tests, and the number of all tests."""
    run = subprocess.run([runner, program, "--gtest_filter=-*ManyThreads*", "--gtest_color=no"],
                         text=True, capture_output=True, check=False, env=os.environ | environment)
    count = re.search(r"^\[==========\] (\d+) tests? .*ran\.", run.stdout, re.MULTILINE)
    if not count:
        sys.exit(f"the test program did not end: {run.stdout[-1000:]}{run.stderr}")
    failed = re.findall(r"^\[  FAILED  \] (\S+?),? .*\(\d+ ms\)$", run.stdout, re.MULTILINE)
    return set(failed), int(count[1])


def is_test_of(function, test):
    """Whether this is a test of the function."""
    name = test.split("/")[-1]
    if "TheShimsOf." in name:
        return re.match(r"[A-Z][a-z]*", name.split(".")[1])[0].lower() == function
    return name in (function, f"{function}_with_a_folder", f"{function}_of_the_link")


def main():
    runner, program, library = sys.argv[1:]
    functions = functions_of(library)
    failed, count = failed_tests(runner, program, {})
    if failed or count == 0:
        sys.exit(f"with every tuple these fail of {count} tests: {sorted(failed)}")
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = list(pool.map(lambda number: failed_tests(
            runner, program, {"LUMO_MACOS_WITHOUT_TUPLE": str(number)}), range(len(functions))))
    mistakes = noticed = 0
    for function, (failed, _) in zip(functions, runs):
        others = {test for test in failed if not is_test_of(function, test)}
        noticed += bool(failed)
        if others or bool(failed) == (function in SECOND_NET):
            print(f"without {function}: {sorted(failed)}")
            mistakes += 1
    print(f"{count} tests; {len(functions)} tuples left out, {noticed} noticed, "
          f"{len(SECOND_NET & set(functions))} with a second net, {mistakes} mistakes")
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main())
