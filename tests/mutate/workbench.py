"""A copy of the project in which changes are made: its sources, its build, its test programs and
their sources."""

import dataclasses
import functools
import hashlib
import json
import os
import resource
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

# A test hangs when it exceeds HANG_FACTOR times its CPU time without a change, plus
# HANG_CPU_SECONDS. CPU time does not depend on other load. A test that waits forever uses none: it
# hangs after HANG_SECONDS by the clock, plus twice the time that it takes without a change.
HANG_FACTOR = 10
HANG_CPU_SECONDS = 5
HANG_SECONDS = 120
MAX_MEMORY = 8 << 30

# Tests with these labels run the tool thousands of times or build it again, which takes too long
# for every change.
LEFT_OUT = {"faults", "seam"}


class Unusable(Exception):
    """The unchanged project cannot be built or does not pass its tests."""


@dataclasses.dataclass
class Program:
    """Tests that are run by one command."""
    name: str
    command: list
    environment: dict
    targets: list           # paths in the build folder that must be built for it
    sources: set = dataclasses.field(default_factory=set)  # the sources of the targets
    files: list = dataclasses.field(default_factory=list)  # the targets and their libraries
    digest: bytes = b""     # of the files, without a change
    cpu: float = 0.0        # seconds without a change
    wall: float = 0.0


class Workbench:
    """The copy of a project, in a folder that the next run uses again."""

    def __init__(self, project, folder):
        self.tree = folder / "tree"
        self.build_folder = self.tree / "build" / "dev"
        self._copy(project)
        self.programs = []

    def _copy(self, project):
        """Updates the copy from the project's files, including uncommitted ones. Equal files are
        not written, so only changed ones are built."""
        listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others",
                                 "--exclude-standard"], cwd=project, check=True,
                                capture_output=True).stdout.decode().split("\0")
        wanted = {name for name in listed if name and (project / name).is_file()}
        for name in wanted:
            source, copy = project / name, self.tree / name
            if not copy.is_file() or copy.read_bytes() != source.read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(source, copy)
        for path in self.tree.rglob("*"):
            name = path.relative_to(self.tree)
            if path.is_file() and name.parts[0] != "build" and str(name) not in wanted:
                path.unlink()

    def prepare(self, folders, say):
        """Builds everything and runs once the tests of the sources in the folders. Raises Unusable
        if one fails."""
        say("building the copy")
        # A changed program may hang, so it is not run after linking to discover its tests.
        options = ["-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"]
        if shutil.which("ccache"):
            options.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        self._must(["cmake", "--preset", "dev", "-S", self.tree, *options])
        self._must(["cmake", "--build", self.build_folder])
        self.programs = [program for program in self._find_programs()
                         if any(Path(source).is_relative_to(folder)
                                for source in program.sources for folder in folders)]
        for number, program in enumerate(self.programs, 1):
            program.digest = self._digest(program)
            say(f"running the tests without a change: {number} of {len(self.programs)}, "
                f"{program.name}")
            failure, program.cpu, program.wall = self._run(program, None)
            if failure:
                raise Unusable(f"{program.name} fails without a change: {failure}")

    def _must(self, command):
        done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False)
        if done.returncode != 0:
            raise Unusable(done.stdout.decode(errors="replace")[-3000:])
        return done.stdout.decode(errors="replace")

    def _find_programs(self):
        """All programs of CTest's list; the tests of one GoogleTest program are run as one."""
        listed = json.loads(self._must(["ctest", "--test-dir", self.build_folder,
                                        "--show-only=json-v1"]))
        objects = self._objects()
        programs = {}
        for test in listed["tests"]:
            command = test["command"]
            properties = {item["name"]: item["value"] for item in test["properties"]}
            is_whole = any(word.startswith("--gtest_filter=") for word in command)
            name = Path(command[0]).name if is_whole else test["name"]
            if name in programs or LEFT_OUT & set(properties.get("LABELS", [])):
                continue
            if is_whole:
                command = [command[0], "--gtest_fail_fast", "--gtest_brief=1"]
            elif is_unittest(command[-1]):
                command = [*command, "--failfast"]
            environment = dict(item.split("=", 1) for item in properties.get("ENVIRONMENT", []))
            targets = self._built_files([*command, *environment.values()])
            program = Program(name, command, environment, targets)
            for target in targets:
                inputs = [target, *self._ninja("-t", "inputs", target).split("\n")]
                program.sources |= set().union(*(objects.get(path, set()) for path in inputs))
                program.files += [target, *(path for path in inputs if ".so" in path)]
            programs[name] = program
        return list(programs.values())

    def _built_files(self, words):
        """The words that are files made by the build."""
        known = set(self._ninja("-t", "targets", "all").replace(": ", "\n").split("\n"))
        below = [os.path.relpath(word, self.build_folder) for word in words
                 if word.startswith(str(self.build_folder))]
        return [path for path in below if path in known]

    def _objects(self):
        """The sources of each object file, as listed by the compiler."""
        objects, sources = {}, None
        for line in self._ninja("-t", "deps").split("\n"):
            if line.startswith("    "):
                path = Path(os.path.normpath(self.build_folder / line.strip()))
                if path.is_relative_to(self.tree):
                    sources.add(str(path.relative_to(self.tree)))
            elif ": #deps" in line:
                sources = objects.setdefault(line.split(": #deps")[0], set())
        return objects

    def _ninja(self, *words):
        return self._must(["ninja", "-C", self.build_folder, *words])

    def is_built(self, program):
        """Builds the targets of a program; false if they do not compile."""
        done = subprocess.run(["cmake", "--build", self.build_folder, "--target",
                               *(program.targets or ["all"])], stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        return done.returncode == 0

    def _digest(self, program):
        digest = hashlib.sha256()
        for path in program.files:
            digest.update((self.build_folder / path).read_bytes())
        return digest.digest()

    def differs(self, program):
        """Whether the built program differs from the one without a change."""
        return self._digest(program) != program.digest

    def failure_of(self, program):
        """Why the program's tests failed; "" if they passed."""
        return self._run(program, HANG_CPU_SECONDS + HANG_FACTOR * program.cpu)[0]

    def _run(self, program, cpu_limit):
        """Runs the tests; returns why they failed ("" if they passed), CPU seconds and seconds by
        the clock."""
        clock_limit = HANG_SECONDS + 2 * program.wall if cpu_limit else None
        with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
            os.chmod(folder, 0o755)  # some tests continue as another user
            environment = {**os.environ, **program.environment, "TMPDIR": folder, "HOME": folder}
            before, began = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
            child = subprocess.Popen([*mounts_of_its_own(), *program.command], cwd=folder,
                                     env=environment, stdin=subprocess.DEVNULL,
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                     start_new_session=True,
                                     preexec_fn=lambda: set_limits(cpu_limit))
            try:
                failure = meaning_of(child.wait(clock_limit))
            except subprocess.TimeoutExpired:
                failure = "hangs"
            finally:
                end_session(child)
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
        cpu = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
        return failure, cpu, time.monotonic() - began


def is_unittest(path):
    """Whether this is a Python script that runs its tests with unittest."""
    return path.endswith(".py") and "unittest.main()" in Path(path).read_text()


@functools.cache
def mounts_of_its_own():
    """A prefix for a command, if permitted: its mounts are removed when it ends."""
    prefix = ["unshare", "--mount", "--"]
    permitted = shutil.which("unshare") and subprocess.run(
        [*prefix, "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0
    return prefix if permitted else []


def set_limits(cpu_limit):
    """Limits the resources of a test that may behave arbitrarily."""
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    # Not RLIMIT_AS: a browser reserves much more address space than it uses.
    resource.setrlimit(resource.RLIMIT_DATA, (MAX_MEMORY, MAX_MEMORY))
    if cpu_limit:
        seconds = int(cpu_limit) + 1
        resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds))


def end_session(child):
    """Kills a program and the processes that it started."""
    try:
        os.killpg(child.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    child.wait()


def meaning_of(status):
    """The meaning of an exit status; "" for success."""
    if status in (-signal.SIGXCPU, -signal.SIGKILL):
        return "hangs"
    if status < 0:
        return f"ends by {signal.Signals(-status).name}"
    return "fails" if status > 0 else ""
