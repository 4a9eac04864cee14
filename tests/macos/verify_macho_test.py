#!/usr/bin/env python3
"""Tests script/verify-macho: the products for a Mac are linked again with one fault at a time, and
exactly the property that detects it must fail.

usage: verify_macho_test.py BUILD_FOLDER...      (of the presets macos-*, already built)
"""
import os
import pathlib
import re
import subprocess
import sys
import unittest

from lumo_testing import PROJECT, FolderTest, run

TOOL, LIBRARY = "lumo-exs-import", "liblumo-relink.dylib"
STUB = """--- !tapi-tbd
tbd-version: 4
targets: [ x86_64-macos, arm64-macos ]
install-name: '/usr/lib/libextra.dylib'
...
"""


class Build:
    """A build folder and its build commands."""

    def __init__(self, folder):
        self.folder = folder
        self.commands = {
            name: subprocess.run(["ninja", "-C", folder, "-t", "commands", f"bin/{name}"],
                                 check=True, capture_output=True, text=True).stdout.splitlines()
            for name in (TOOL, LIBRARY)}

    def run(self, command):
        subprocess.run(command, shell=True, cwd=self.folder, check=True)

    def link(self, name, output, change=lambda command: command, more=""):
        """Links `name` to the file `output` with a changed command, `more` at its end."""
        command = change(self.commands[name][-1]).removeprefix(": && ").removesuffix(" && :")
        self.run(command.replace(f"-o bin/{name}", f"-o {output}") + f" {more}")

    def compile(self, source, output, like):
        """Compiles the file `source` as the project's file `like` is compiled."""
        command, = [one for one in self.commands[LIBRARY] if one.endswith(f"-c {PROJECT / like}")]
        command = re.sub(r" -M[DTF]\b( \S+\.o(\.d)?)?", "", command)
        command = re.sub(r"-o \S+ -c \S+", f"-I{(PROJECT / like).parent} -o {output} -c {source}",
                         command)
        self.run(command.replace("-Werror", "-w"))


def replaced(old, new):
    def change(command):
        assert old in command, f"{old} is not in {command}"
        return command.replace(old, new)
    return change


class VerifierTest(FolderTest):
    builds = []

    def failing(self, build, tool=None, library=None, foreign="/no/such/folder"):
        """The properties that fail, without the name of the image and the values."""
        done = run([PROJECT / "script/verify-macho", "--foreign", foreign,
                    tool or f"{build.folder}/bin/{TOOL}",
                    library or f"{build.folder}/bin/{LIBRARY}"], text=True)
        found = re.findall(r"^FAIL  \S+ (?:\S+): (.*?)(?:\$INODE64)?:", done.stdout, re.M)
        self.assertEqual(done.returncode, 1 if found else 0, done.stdout + done.stderr)
        return found

    def expect_of_library(self, properties, **link):
        for build in self.builds:
            build.link(LIBRARY, self.folder / LIBRARY, **link)
            self.assertEqual(self.failing(build, library=self.folder / LIBRARY), properties)

    def expect_of_tool(self, properties, **link):
        for build in self.builds:
            build.link(TOOL, self.folder / TOOL, **link)
            self.assertEqual(self.failing(build, tool=self.folder / TOOL), properties)

    def test_the_products_as_they_are_pass(self):
        for build in self.builds:
            self.assertEqual(self.failing(build), [])

    def test_another_install_name_fails(self):
        self.expect_of_library(["install name"],
                               change=replaced("@rpath/liblumo-relink", "@rpath/libother"))

    def test_another_current_version_fails(self):
        self.expect_of_library(["current version"], more="-Wl,-current_version,1.0")

    def test_another_compatibility_version_fails(self):
        self.expect_of_library(["compatibility version"], more="-Wl,-compatibility_version,1.0")

    def test_a_run_path_in_the_library_fails(self):
        self.expect_of_library(["run paths"], more="-Wl,-rpath,@loader_path")

    def test_a_second_run_path_in_the_tool_fails(self):
        self.expect_of_tool(["run paths"], more="-Wl,-rpath,/usr/local/lib")

    def test_no_run_path_in_the_tool_fails(self):
        self.expect_of_tool(["run paths"], change=replaced("-Wl,-rpath,@loader_path", ""))

    def test_one_more_library_fails(self):
        stub = self.folder / "libextra.tbd"
        stub.write_text(STUB)
        self.expect_of_tool(["libraries"], more=stub)
        self.expect_of_library(["libraries"], more=stub)

    def test_a_library_that_may_be_absent_fails(self):
        stub = self.folder / "libextra.tbd"
        stub.write_text(STUB)
        self.expect_of_tool(["libraries that are not simply loaded", "libraries"],
                            more=f"-Wl,-weak_library,{stub}")

    def test_a_newer_minimum_system_fails(self):
        newer = replaced("-mmacosx-version-min=13.0", "-mmacosx-version-min=14.0")
        self.expect_of_tool(["minimum system"], change=newer)
        self.expect_of_library(["minimum system"], change=newer)

    def add(self, build, name, text, more=""):
        """Links `name` with one more source file, whose text is given."""
        source = self.folder / "extra.cpp"
        source.write_text(text)
        build.compile(source, self.folder / "extra.o", like="relink/sample_index.cpp")
        build.link(name, self.folder / name, more=f"{self.folder / 'extra.o'} {more}")

    def test_one_more_exported_name_fails(self):
        text = "#pragma GCC visibility push(default)\nextern \"C\" int extra() { return 1; }\n"
        for build in self.builds:
            self.add(build, LIBRARY, text, more="-Wl,-exported_symbol,_extra")
            self.assertEqual(self.failing(build, library=self.folder / LIBRARY), ["exported names"])
            self.add(build, TOOL, text)
            self.assertEqual(self.failing(build, tool=self.folder / TOOL), ["exported names"])

    def test_one_more_call_of_audio_toolbox_fails(self):
        text = """extern "C" int AudioUnitUninitialize(void*);
                  extern "C" int extra() { return AudioUnitUninitialize(nullptr); }"""
        stub = (PROJECT / "packaging/macos-sdk/AudioToolbox.tbd").read_text()
        more = self.folder / "AudioToolbox.tbd"
        more.write_text(replaced("_AudioUnitInitialize", "_AudioUnitUninitialize")(stub))
        for build in self.builds:
            self.add(build, TOOL, text, more=more)
            self.assertEqual(self.failing(build, tool=self.folder / TOOL),
                             ["calls of AudioToolbox"])

    def expect_of_tuples(self, properties, old, new):
        """Replaces `old` by `new` in the source of the interpose section and checks which
        properties fail."""
        like = "relink/interpose_macos.cpp"
        source = self.folder / "interpose.cpp"
        source.write_text(replaced(old, new)((PROJECT / like).read_text()))
        for build in self.builds:
            build.compile(source, self.folder / "interpose.o", like)
            build.link(LIBRARY, self.folder / LIBRARY, change=lambda command: re.sub(
                r"\S+/interpose_macos\.cpp\.o", str(self.folder / "interpose.o"), command))
            self.assertEqual(self.failing(build, library=self.folder / LIBRARY), properties)

    def test_a_dropped_tuple_fails(self):
        self.expect_of_tuples(["size of the interpose section", "in front of _access"],
                              "LUMO_INTERPOSE(access)\n", "")

    def test_one_more_tuple_fails(self):
        self.expect_of_tuples(
            ["size of the interpose section", "in front of anything else"],
            "LUMO_INTERPOSE(access)\n",
            "LUMO_INTERPOSE(access)\n"
            "constexpr auto& rmdir_shim = ::rmdir;\nLUMO_INTERPOSE(rmdir)\n")

    def test_a_tuple_with_the_function_of_another_fails(self):
        self.expect_of_tuples(
            ["in front of _lstat"], "LUMO_INTERPOSE(lstat)\n",
            '__attribute__((used, section("__DATA,__interpose")))\n'
            "constinit const Pair lstat_pair{stat_shim, ::lstat};\n")

    def test_a_path_of_this_machine_fails(self):
        for build in self.builds:
            self.add(build, LIBRARY, 'extern "C" const char* extra() { return __FILE__; }\n')
            self.assertEqual(
                self.failing(build, library=self.folder / LIBRARY, foreign=self.folder),
                [f"holds the text {self.folder}"])

    def test_an_unsigned_arm64_file_fails(self):
        for build in self.builds:
            if build.folder.endswith("arm64"):
                build.link(LIBRARY, self.folder / LIBRARY, more="-Wl,-no_adhoc_codesign")
                self.assertEqual(self.failing(build, library=self.folder / LIBRARY),
                                 ["signature (ad hoc, hardened runtime, hashes match)"])

    def test_a_byte_changed_after_signing_fails(self):
        for build in self.builds:
            if build.folder.endswith("arm64"):
                data = bytearray((pathlib.Path(build.folder) / "bin" / TOOL).read_bytes())
                data[0x3FFF] ^= 1
                (self.folder / TOOL).write_bytes(data)
                self.assertEqual(self.failing(build, tool=self.folder / TOOL),
                                 ["signature (ad hoc, hardened runtime, hashes match)"])


if __name__ == "__main__":
    VerifierTest.builds = [Build(os.path.abspath(folder)) for folder in sys.argv[1:]]
    if not VerifierTest.builds:
        sys.exit(__doc__)
    unittest.main(argv=sys.argv[:1], verbosity=2)
