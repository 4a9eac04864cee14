"""Mutation testing: changes one place of the code and checks whether a test detects it.

usage: script/mutate [FOLDER] [--count N] [--seed N]

Every change is made in a copy of the project, in build/mutate. The test programs built from the
changed source are built and run until one fails. A change that no test detects is printed with its
place; CONTRIBUTING.md describes what to do about it. """

import argparse
import collections
import random
import sys
from pathlib import Path

import changes
import workbench

# The changes are drawn in equal parts from these groups of folders.
SHARES = (("exs",), ("relink",), ("platform", "base"), ("tools",))


class Draw:
    """Draws changes at random: from each share in turn, each kind with equal probability, until
    none is left."""

    def __init__(self, tree, sources, shares, seed):
        self._random = random.Random(seed)
        self._left = [self._changes_below(tree, sources, folders) for folders in shares]

    @staticmethod
    def _changes_below(tree, sources, folders):
        by_kind = collections.defaultdict(list)
        for name in sorted(sources):
            if any(Path(name).is_relative_to(folder) for folder in folders):
                for change in changes.changes_of((tree / name).read_text()):
                    by_kind[change.kind].append((name, change))
        return by_kind

    def __iter__(self):
        while any(self._left):
            for by_kind in self._left:
                if by_kind:
                    yield self._one_of(by_kind)

    def _one_of(self, by_kind):
        kind = self._random.choice(sorted(by_kind))
        places = by_kind[kind]
        drawn = places.pop(self._random.randrange(len(places)))
        if not places:
            del by_kind[kind]
        return drawn


OUTCOMES = ("noticed", "survived", "compiled to the same programs", "did not compile")
NOTICED, SURVIVED, SAME, NOT_COMPILED = OUTCOMES


class Trial:
    """Makes changes and counts the outcomes."""

    def __init__(self, bench):
        self.counts = collections.Counter()
        self._bench = bench
        self._noticed_by = collections.Counter()  # (folder of the source, program)

    def judge(self, name, change):
        """The outcome of a change, and what noticed it."""
        path = self._bench.tree / name
        source = path.read_text()
        try:
            path.write_text(change.apply(source))
            outcome, noticed_by = self._verdict(name)
        finally:
            path.write_text(source)
        self.counts[outcome] += 1
        return outcome, noticed_by

    def _verdict(self, name):
        outcome = SAME
        for program in self._nearest_first(name):
            if not self._bench.is_built(program):
                return NOT_COMPILED, ""
            if not self._bench.differs(program):
                continue
            outcome = SURVIVED
            failure = self._bench.failure_of(program)
            if failure:
                self._noticed_by[Path(name).parent, program.name] += 1
                return NOTICED, f": {program.name} {failure}"
        return outcome, ""

    def _nearest_first(self, name):
        """The programs built from this source, in the order in which they are run: by the number of
        changes detected in its folder, then by whether their tests are named like the source or its
        folder, then the fastest first."""
        able = [program for program in self._bench.programs if name in program.sources]
        return sorted(able, key=lambda program: (-self._noticed_by[Path(name).parent, program.name],
                                                 -nearness(name, program), program.cpu))


def nearness(name, program):
    """How many of the names of the source and of its folder occur in the names of the program's
    tests."""
    tests = [Path(source).stem for source in program.sources if source.startswith("tests/")]
    return sum(any(word in test for test in tests)
               for word in (Path(name).stem, Path(name).parent.name))


def run(project, shares, count, seed, out=sys.stdout, progress=sys.stderr):
    """Tries `count` changes of the project in the given folders. Returns the numbers of
    outcomes."""
    def say(text):
        print(text, file=progress, flush=True)

    bench = workbench.Workbench(project, project / "build" / "mutate")
    bench.prepare([folder for folders in shares for folder in folders], say)
    sources = set().union(*(program.sources for program in bench.programs))
    trial = Trial(bench)
    try:
        for number, (name, change) in zip(range(1, count + 1),
                                          Draw(bench.tree, sources, shares, seed)):
            source = (bench.tree / name).read_text()
            place = f"{name}:{change.line(source)}: {change.describe(source)}"
            outcome, noticed_by = trial.judge(name, change)
            say(f"[{number}/{count}] {place} | {outcome}{noticed_by}")
            if outcome == SURVIVED:
                print(f"survived: {place}", file=out, flush=True)
    except KeyboardInterrupt:
        say("stopped")
    print(", ".join(f"{trial.counts[outcome]} {outcome}" for outcome in OUTCOMES), file=out)
    return trial.counts


def main():
    parser = argparse.ArgumentParser(prog="script/mutate", description="Changes one place of the "
                                     "code at a time and prints the changes that no test notices.")
    parser.add_argument("folder", nargs="?", metavar="FOLDER",
                        help="change only what is below it (default: exs, relink, platform with "
                        "base, and tools in equal parts)")
    parser.add_argument("--count", type=int, default=40, help="how many changes (default: 40)")
    parser.add_argument("--seed", type=int, default=1,
                        help="another one draws other changes (default: 1)")
    options = parser.parse_args()
    project = Path(__file__).resolve().parents[2]
    shares = SHARES
    if options.folder:
        folder = (project / options.folder).resolve()
        if not folder.is_dir() or not folder.is_relative_to(project):
            parser.error(f"{options.folder} is no folder of the project")
        shares = ((str(folder.relative_to(project)),),)
    try:
        run(project, shares, options.count, options.seed)
    except workbench.Unusable as error:
        sys.exit(f"script/mutate: {error}")


if __name__ == "__main__":
    main()
