"""Checks that each shim has a test that fails without it.

For every shim, links the library without exporting that shim and runs the tests with the shim's
name against it: they must fail. With the complete library they must pass.

usage: check_each_shim.py TEST_PROGRAM EXPORTS COMPILER LINK_ARGUMENT...
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile


def shims_of(exports):
    shown = re.sub(r'/\*.*?\*/|extern "C\+\+" \{.*?\};', "", exports, flags=re.DOTALL)
    return re.findall(r"\b(\w+);", shown)


def link(folder, exports, command):
    (folder / "exports.map").write_text(exports)
    library = folder / "liblumo-relink.so"
    subprocess.run([*command, "-shared", f"-Wl,--version-script={folder / 'exports.map'}",
                    "-Wl,-soname,liblumo-relink.so", "-o", library], check=True)
    return library


def tests_of(shim, shims):
    """The filter of the tests that have the name of `shim`, and not of one that begins with it."""
    name = shim.lstrip("_")
    longer = [one for one in shims if one.startswith(shim) and one != shim]
    without = ":".join(f"TheShimsOf.{one.lstrip('_').capitalize()}*" for one in longer)
    return f"*TheShimOf.ReachesTheIndexedFile/{name}:TheShimsOf.{name.capitalize()}*-{without}"


def passes(program, library, tests):
    """Whether `tests` pass with `library` as liblumo-relink."""
    run = subprocess.run([program, f"--gtest_filter={tests}"], capture_output=True, text=True,
                         env={**os.environ, "LD_PRELOAD": str(library)})
    if "[       OK ]" not in run.stdout and "[  FAILED  ]" not in run.stdout:
        sys.exit(f"no test is called {tests}:\n{run.stdout}{run.stderr}")
    return run.returncode == 0


def main():
    program, exports_path, *command = sys.argv[1:]
    exports = pathlib.Path(exports_path).read_text()
    mistakes = 0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        shims = shims_of(exports)
        whole = link(folder, exports, command)
        for shim in shims:
            if not passes(program, whole, tests_of(shim, shims)):
                print(shim, "fails its test")
                mistakes += 1
        for shim in shims:
            without = re.sub(rf"\b{shim};", "", exports)
            if passes(program, link(folder, without, command), tests_of(shim, shims)):
                print(shim, "is missed by no test")
                mistakes += 1
    print(len(shims), "shims,", mistakes, "mistakes")
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main())
