"""Shared by the tests of this folder: runs of the program, with the real tool or with a fake
one."""

import json
import os
import shutil
import sys
import time
import zlib
from pathlib import Path

from lumo_testing import (HANG_SECONDS, FolderTest, built_program, import_command, run,
                          write_preset, write_wave)

TOOL = built_program("LUMO_TOOL")
LIBRARY = built_program("LUMO_LIBRARY")
# The program that runs these programs if they were built for another system.
EMULATOR = list(filter(None, [os.environ.get("LUMO_EMULATOR")]))

# The fake tool, written beside a copy of the program. plan.json has an action for each instrument,
# by its name without extension; the words of each call are appended to calls.jsonl.
FAKE_TOOL = '''#!%(python)s
import json, os, pathlib, signal, subprocess, sys, time
signal.signal(signal.SIGINT, signal.SIG_DFL)  # ends without a message, like the tool
here = pathlib.Path(__file__).parent
plan = json.loads((here / "plan.json").read_text())
(here / "pid").write_text(str(os.getpid()))
words, instruments, i = sys.argv[1:], [], 0
with (here / "calls.jsonl").open("a") as calls:
    calls.write(json.dumps([os.fsencode(word).decode("latin-1") for word in sys.argv]) + "\\n")
while i < len(words):
    if words[i] in ("--package", "--states", "--search"):
        i += 2
    else:
        instruments.append(words[i])
        i += 1
head = words[:len(words) - len(instruments)]
def is_open(number):
    try:
        return bool(os.fstat(number))
    except OSError:
        return False
(here / "descriptors.json").write_text(json.dumps(
    [os.fstat(0).st_rdev == os.stat(os.devnull).st_rdev, list(filter(is_open, range(3, 64)))]))
step = open(here / "steps", "rb", buffering=0) if (here / "steps").exists() else None
for instrument in instruments:
    act = plan.get(pathlib.Path(instrument).stem, plan.get("*", "ok"))
    if step and not step.read(1):
        sys.exit(0)
    if act.startswith("signal "):
        os.kill(os.getpid(), int(act.split()[1]))
    elif act.startswith("status "):
        sys.exit(int(act.split()[1]))
    elif act.startswith("stderr "):
        print(act[7:], file=sys.stderr, flush=True)
    elif act.startswith("last words "):
        os.write(2, act[11:].encode())
        sys.exit(1)
    elif act == "silent, then Ctrl-C":  # of which the program hears after the end of the output
        os.close(1)
        os.close(2)
        time.sleep(0.3)
        os.kill(os.getppid(), signal.SIGINT)
        os._exit(0)
    elif act == "close stderr":
        os.close(2)
        time.sleep(0.3)  # so that the pipe ends before the next line comes
    elif act == "torn":
        os.write(1, b'{"name":"to')
        sys.exit(0)
    elif act == "wait":
        (here / "waiting").touch()
        while True:
            signal.pause()
    elif act == "wait on":  # although it is asked to end
        signal.signal(signal.SIGTERM, lambda number, frame: (here / "asked").touch())
        (here / "waiting").touch()
        while True:
            signal.pause()
    elif act.startswith("print "):
        os.write(1, act[6:].encode() + b"\\n")
        continue
    real = None
    if act in ("real", "real, then kill"):
        real = subprocess.run([*plan["tool"], *head, instrument], stdout=subprocess.PIPE,
                              check=True).stdout
    if act == "real, then kill":
        os.kill(os.getppid(), signal.SIGKILL)
        sys.exit(0)
    if real:
        os.write(1, real)
        continue
    error = act[5:] if act.startswith("fail ") else ""
    line = {"name": pathlib.Path(instrument).stem, "source": instrument, "ok": not error,
            "error": error, "relinked": [], "unresolved": [], "appleLibrary": [], "samples": 1,
            "sampleBytes": 1000, "copiedBytes": 1000, "stateFile": "", "loadMs": 0.1,
            "shape": {"zones": 0, "maxStack": 1, "stackedPercent": 0.0, "lowestKey": 127,
                      "highestKey": 0, "layers": []}}
    text = json.dumps(line, separators=(",", ":"), ensure_ascii=False) + "\\n"
    os.write(1, text.encode("utf-8", "surrogateescape"))
while (here / "stay").exists():
    time.sleep(0.01)
'''


def words_of(program, *arguments):
    """The command line of an import by this program."""
    return [*EMULATOR, *import_command(program, "Show.lumo", arguments, "states")]


class LibraryTest(FolderTest):
    """A test whose programs run in its temporary folder."""

    def setUp(self):
        super().setUp()
        self.library = self.folder / "lib"
        self.program = LIBRARY

    def use_fake_tool(self, **plan):
        """Makes the program start a fake tool that follows `plan`."""
        here = self.folder / "programs"
        here.mkdir(exist_ok=True)
        self.program = here / LIBRARY.name
        if not self.program.exists():
            shutil.copy(LIBRARY, self.program)
        tool = here / TOOL.name
        tool.write_text(FAKE_TOOL % {"python": sys.executable})
        tool.chmod(0o755)
        self.plan(**plan)
        return here

    def plan(self, **plan):
        plan = {key.replace("_", " ") if key != "tool" else key: act for key, act in plan.items()}
        (self.folder / "programs/plan.json").write_text(json.dumps(plan))

    def calls(self):
        """The words of each call of the fake tool, as texts with one character for each byte."""
        calls = self.folder / "programs/calls.jsonl"
        if not calls.exists():
            return []
        return [json.loads(line) for line in calls.read_text().splitlines()]

    def make(self, *names):
        """Makes empty files with the names of instruments."""
        for name in names:
            path = self.library / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(b"")

    def make_kit(self, name, samples=2, moved=False, frames=50):
        """Makes an instrument and its samples, which are at their recorded paths unless `moved`."""
        folder = self.library / name
        paths = []
        for i in range(samples):
            write_wave(folder / f"{i}.wav", frames + i, zlib.crc32(name.encode()) + i)
            recorded = Path("/Volumes/Gone") / name if moved else folder
            paths.append(recorded / f"{i}.wav")
        return write_preset(folder / f"{name}.aupreset", paths)

    def words(self, *arguments):
        return words_of(self.program, *arguments)

    def run_library(self, *arguments, words=None, **options):
        """Runs the program to its end; captures its output as bytes."""
        return run(words or self.words(*arguments), cwd=self.folder, **options)

    def expect(self, done, status):
        self.assertEqual(done.returncode, status, (done.stdout, done.stderr))

    def wait_until(self, condition, what):
        end = time.monotonic() + HANG_SECONDS
        while not condition():
            self.assertLess(time.monotonic(), end, f"this never happened: {what}")
            time.sleep(0.005)

    def reports(self, name):
        """The parsed report lines of a file."""
        lines = (self.folder / name).read_bytes().decode("utf-8", "surrogateescape")
        return [json.loads(line) for line in lines.splitlines()]
