#!/usr/bin/env python3
"""mutate.py [N] [FAMILY]: measures how strong the tests are. Makes one small fault after the other in lines of the
library that are drawn by lot, N of them (default 300), of the whole library or of one family ("settings",
"platform/imageio"), and looks whether a test fails.

Works on the newest commit, in a copy of it in build/mutate. Each fault has a line of its own. Those that do not
compile, and those that the compiler makes the same of, do not count. What tests a family is tried first, then every
program that loads what was changed, but those that take long, unless a header changes more than can be built in a moment. The
programs run where nothing but passing memory can be written, as a fault may write anywhere.

Goes on where it was stopped. Fails when fewer than 95 % of the faults are found."""

import argparse
import collections
import json
import random
import sys
import threading
import time

import mutations
from mutantTree import PLACE, ROOT, TIME_LIMIT, DoesNotCompile, Tree, family_of, output

WANTED = 95
OBJECTS_AT_ONCE = 3
MOST_OBJECTS_APART = 10
TAKE_LONG = ("tests/trials/trials-test", "tests/hosts/idle-test")


class Judge:
    """Tells of a mutant whether the tests find it."""

    def __init__(self, tree, times):
        self.tree, self.times = tree, times

    def nearest(self, programs):
        """Those with the least in them first."""
        return sorted(programs, key=lambda name: (len(self.tree.programs[name]), self.times[name]))

    def first_failure(self, programs, changed):
        for name in self.nearest(programs):
            if changed & self.tree.programs[name]:
                if by := self.tree.run(name, 4 * self.times[name] + 30):
                    return by
        return None

    def objects(self, mutant):
        """What is to be built, in steps: the family's, a few at a time, and, unless they are many, all others."""
        family = family_of(mutant["file"])
        objects = self.tree.objects_of[mutant["file"]]
        near = [name for name in objects if family_of(self.tree.owner[name]) == family]
        far = [name for name in objects if name not in near]
        return ([near[begin:begin + OBJECTS_AT_ONCE] for begin in range(0, len(near), OBJECTS_AT_ONCE)],
                far if len(far) <= MOST_OBJECTS_APART else [])

    def finder(self, mutant):
        """What finds it, if anything; whether it changed anything at all."""
        own = {name for name in self.times if family_of(name) == family_of(mutant["file"])}
        near, far = self.objects(mutant)
        changed = set()
        for objects in near:
            more = self.tree.rebuild(objects)
            changed |= more
            if by := self.first_failure(own, more):
                return by, True
        changed |= self.tree.rebuild(far)
        return self.first_failure(self.times.keys() - own, changed), bool(changed)

    def verdict(self, mutant):
        with self.tree.changed(mutant):
            try:
                by, differs = self.finder(mutant)
            except DoesNotCompile:
                return "does not compile", None
        return "killed" if by else "survived" if differs else "same", by


def candidates(folder, family, seed):
    """All that could be changed, in an order by lot: of each line, one change."""
    lot = random.Random(seed)
    found = []
    for path in sorted((folder / "zorvan").rglob("*")):
        file = str(path.relative_to(folder))
        if path.suffix in (".h", ".cpp") and path.parent.name != "zorvan" and family in (None, family_of(file)):
            found += [{"file": file, "line": number, "old": line, "new": lot.choice(others)}
                      for number, line, others in mutations.lines_of(path.read_text())]
    lot.shuffle(found)
    return found


def programs_for(tree, family):
    """The test programs that load a library of the family, or of any."""
    libraries = {made for made in tree.links if made.startswith("zorvan/") and family in (None, family_of(made))}
    return [name for name, along in tree.programs.items() if libraries & along and name not in TAKE_LONG]


def measured_times(tree, names, file):
    """How long the programs take; without those that fail as they are."""
    times = json.loads(file.read_text()) if file.exists() else {}
    for name in names:
        if name not in times:
            begin = time.monotonic()
            by = tree.run(name)
            times[name] = time.monotonic() - begin
            print(f"{name}: {times[name]:.1f} s" + (f", LEFT OUT: fails unchanged, in {by}" if by else ""),
                  file=sys.stderr, flush=True)
            times[name] = None if by else times[name]
            file.write_text(json.dumps(times))
    return {name: times[name] for name in names if times[name] is not None}


class Run:
    """Tries mutants until enough of them count, and keeps what came of each."""

    def __init__(self, wanted, mutants, file):
        self.wanted, self.file, self.lock = wanted, file, threading.Lock()
        lines = file.read_text().splitlines() if file.exists() else []
        self.known = {self._key(found): found for found in map(json.loads, lines)}
        self.waiting = iter(mutants)
        self.counted = []

    @staticmethod
    def _key(found):
        return found["file"], found["line"], found["new"]

    def go(self, judges):
        workers = [threading.Thread(target=self._work, args=(judge,)) for judge in judges]
        for worker in workers:
            worker.start()
        try:
            for worker in workers:
                worker.join()
        except KeyboardInterrupt:
            self.waiting = iter(()) # those that are being tried are the last

    def _work(self, judge):
        while True:
            with self.lock:
                mutant = next(self.waiting, None)
                if mutant is None or len(self.counted) >= self.wanted:
                    return
            found = self.known.get(self._key(mutant))
            if not found:
                verdict, by = judge.verdict(mutant)
                found = {**mutant, "verdict": verdict, "by": by}
            with self.lock:
                self._keep(found)

    def _keep(self, found):
        if found["verdict"] in ("killed", "survived") and len(self.counted) < self.wanted:
            self.counted.append(found)
        if self._key(found) not in self.known:
            with open(self.file, "a") as file:
                file.write(json.dumps(found) + "\n")
            print(f"[{len(self.counted)}/{self.wanted}] {found['verdict']}: {found['file']}:{found['line']}"
                  + (f" ({found['by']})" if found["by"] else ""), file=sys.stderr, flush=True)


def report(counted):
    """Prints the table and what survived; the share that was found, in percent."""
    families = collections.defaultdict(collections.Counter)
    for found in counted:
        for family in (family_of(found["file"]), "together"):
            families[family][found["verdict"]] += 1
    print(f"{'family':<28} {'mutants':>8} {'killed':>8} {'survived':>8} {'percent':>8}")
    for family, counts in sorted(families.items(), key=lambda row: (row[0] == "together", row[0])):
        percent = 100 * counts["killed"] / counts.total()
        print(f"{family:<28} {counts.total():>8} {counts['killed']:>8} {counts['survived']:>8} {percent:>8.1f}")
    print(f"{sum(TIME_LIMIT in str(found['by']) for found in counted)} were killed by the time limit.")
    for found in counted:
        if found["verdict"] == "survived":
            print(f"\n{found['file']}:{found['line']}\n-{found['old']}\n+{found['new']}")
    return percent if counted else 0


def arguments():
    parser = argparse.ArgumentParser(prog="mutate", description="Measures how strong the tests are.")
    parser.add_argument("count", nargs="?", type=int, default=300, metavar="N", help="how many faults (300)")
    parser.add_argument("family", nargs="?", metavar="FAMILY", help='of one family, as "settings" or "platform/imageio"')
    parser.add_argument("--commit", default="HEAD", help="of which commit (HEAD)")
    parser.add_argument("--seed", type=int, default=1, help="which faults (1)")
    parser.add_argument("--workers", type=int, choices=(1, 2), default=1, help="how many at a time (1)")
    return parser.parse_args()


def main():
    options = arguments()
    commit = output("git", "-C", ROOT, "rev-parse", options.commit).strip()
    PLACE.mkdir(parents=True, exist_ok=True)
    trees = [Tree(number, commit) for number in range(1, options.workers + 1)]
    mutants = candidates(trees[0].folder, options.family, options.seed)
    if not mutants:
        sys.exit(f"mutate: there is no family {options.family}")
    names = programs_for(trees[0], options.family)
    for tree in trees:
        tree.build_programs(names)
    times = measured_times(trees[0], names, PLACE / f"times-{commit}.json")
    run = Run(options.count, mutants, PLACE / f"results-{commit}-{options.seed}.jsonl")
    run.go([Judge(tree, times) for tree in trees])
    if report(run.counted) < WANTED:
        sys.exit(f"mutate: fewer than {WANTED} % of the faults were found")


main()
