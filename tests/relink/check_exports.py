"""Fails unless a built liblumo-relink exports exactly its public interface and the shims.

usage: check_exports.py NM LIBRARY
"""

import subprocess
import sys

INTERFACE = [
    "lumo::exs::SampleIndex::add_root",
    "lumo::exs::SampleIndex::find",
    "lumo::exs::relink::begin",
    "lumo::exs::relink::end",
]
SHIMS = """
    open open64 __open_2 __open64_2 openat openat64 __openat_2 __openat64_2
    fopen fopen64 freopen freopen64 opendir
    stat stat64 lstat lstat64 fstatat fstatat64 statx
    __xstat __xstat64 __lxstat __lxstat64 __fxstatat __fxstatat64
    access faccessat readlink realpath __realpath_chk canonicalize_file_name
""".split()


def shown_names(nm, library):
    lines = subprocess.run([nm, "-D", "-C", "--defined-only", library], check=True,
                           capture_output=True, text=True).stdout.splitlines()
    names = [line.split(maxsplit=2)[2] for line in lines]
    return sorted(name.split("(")[0].split("[abi:")[0] for name in names)


def main():
    shown = shown_names(sys.argv[1], sys.argv[2])
    wanted = sorted(INTERFACE + SHIMS)
    for name in shown:
        if name not in wanted:
            print("shown, but no part of the interface:", name)
    for name in wanted:
        if shown.count(name) != 1:
            print("shown", shown.count(name), "times instead of once:", name)
    return 0 if shown == wanted else 1


if __name__ == "__main__":
    sys.exit(main())
