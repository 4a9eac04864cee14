"""A small import under strace: its system calls, and repetitions with a fault at one of them."""

import os
import re
import shutil
import subprocess
from dataclasses import dataclass

from lumo_testing import contents, import_command, run, write_exs, write_preset, write_wave

# Memory and threads: these calls do not change the disk, and no behaviour is guaranteed when memory
# runs out.
PASSED_OVER = {"brk", "mmap", "munmap", "mprotect", "mremap", "madvise", "futex", "rt_sigreturn",
               "getrandom"}


def can_trace():
    """Whether strace is installed and permitted to trace."""
    if not shutil.which("strace"):
        return False
    traced = subprocess.run(["strace", "-o", os.devnull, "true"], stderr=subprocess.DEVNULL,
                            check=False)
    return traced.returncode == 0


@dataclass(frozen=True)
class Call:
    """A system call of the import."""
    name: str
    number: int  # among the calls of this name, from 1
    is_report: bool  # whether it writes a report line

    def __str__(self):
        return f"{self.name} #{self.number}"


class Stage:
    """The import's input, and a new copy of the prior show for each run. It imports an EXS
    instrument and a preset, with a sample that moved and a name that is taken."""

    def __init__(self, tool, folder):
        self.tool = tool
        self.folder = folder
        self.input = folder / "input"
        write_wave(self.input / "Kit" / "kick.wav", 300, 1)
        write_wave(self.input / "Kit" / "snare.wav", 400, 2)
        write_wave(self.input / "Moved" / "hat.wav", 500, 3)
        self.originals = set(contents(self.input).values())
        self.instruments = [
            write_exs(self.input / "One.exs",
                      [self.input / "Kit" / "kick.wav", "/nowhere/Moved/hat.wav"]),
            write_preset(self.input / "Two.aupreset",
                         [self.input / "Kit" / "snare.wav", self.input / "Kit" / "kick.wav"])]
        show = folder / "prior"
        write_wave(show / "samples" / "Kit" / "kick.wav", 77, 4)
        (show / "states").mkdir()
        (show / "states" / "One.aupreset").write_bytes(b"what was there")
        self.originals.add((show / "samples" / "Kit" / "kick.wav").read_bytes())

    def show(self, name):
        """A copy of the prior show."""
        show = self.folder / name
        shutil.copytree(self.folder / "prior", show)
        return show

    def command(self, show):
        return import_command(self.tool, show, self.instruments)

    def run(self, show):
        """Runs the import without a fault."""
        return run(self.command(show))

    def run_with_fault(self, show, call, fault):
        """Runs the import with a fault, in strace's notation, at one call."""
        return run(["strace", "-f", "-qq", "-o", os.devnull, "-e", f"trace={call.name}",
                    "-e", f"inject={call.name}:{fault}:when={call.number}", *self.command(show)])

    def calls(self):
        """The system calls of the import in order, from the end of the argument checks."""
        show = self.show("traced")
        trace = self.folder / "trace"
        result = run(["strace", "-f", "-o", trace, *self.command(show)])
        assert result.returncode == 0, result.stderr.decode()
        counts, calls, started = {}, [], False
        for line in trace.read_text(errors="replace").splitlines():
            match = re.match(r"\d+ +(\w+)\(", line)
            if not match:
                continue
            name = match[1]
            counts[name] = counts.get(name, 0) + 1
            # The argument checks are followed by the walk over the instruments' folder.
            started = started or (name == "openat" and f'"{self.input}/"' in line)
            if started and name not in PASSED_OVER:
                is_report = name == "write" and line.split("(", 1)[1].startswith("1,")
                calls.append(Call(name, counts[name], is_report))
        assert calls, "the walk over the instruments' folder was not seen"
        shutil.rmtree(show)
        return calls
