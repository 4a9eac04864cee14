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


def passes(program, library, shim):
    """Whether the tests of `shim` pass with `library` as liblumo-relink."""
    name = shim.lstrip("_")
    tests = f"*TheShimOf.reaches_the_indexed_file/{name}:TheShimsOf.{name}_*"
    run = subprocess.run([program, f"--gtest_filter={tests}"], capture_output=True, text=True,
                         env={**os.environ, "LD_PRELOAD": str(library)})
    if "[       OK ]" not in run.stdout and "[  FAILED  ]" not in run.stdout:
        sys.exit(f"no test bears the name of {shim}:\n{run.stdout}{run.stderr}")
    return run.returncode == 0


def main():
    program, exports_path, *command = sys.argv[1:]
    exports = pathlib.Path(exports_path).read_text()
    mistakes = 0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        whole = link(folder, exports, command)
        for shim in shims_of(exports):
            if not passes(program, whole, shim):
                print(shim, "fails its test")
                mistakes += 1
        for shim in shims_of(exports):
            without = re.sub(rf"\b{shim};", "", exports)
            if passes(program, link(folder, without, command), shim):
                print(shim, "is missed by no test")
                mistakes += 1
    print(len(shims_of(exports)), "shims,", mistakes, "mistakes")
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(main())
