#!/usr/bin/env python3
"""coverage-table.py ROOT FILE: the lines and branches that were reached, by folder, and the ten files with the most
branches that were never taken, from what llvm-cov exports. A branch is one outcome of a condition that stands in the
source; what only an exception would take, which the compiler adds, is none."""
import collections
import json
import os
import pathlib
import sys

root = pathlib.Path(sys.argv[1])
sums = collections.defaultdict(lambda: [0, 0, 0, 0])
missed = []
for file in json.load(open(sys.argv[2]))["data"][0]["files"]:
    path = pathlib.Path(os.path.normpath(file["filename"]))  # a cache may have made it relative
    if not path.is_relative_to(root / "zorvan"):
        continue
    path = path.relative_to(root)
    folder = path.parent.parent if path.parent.name == "internal" else path.parent
    summary = file["summary"]
    for name in (str(folder), "all"):
        for at, (kind, key) in enumerate(
                [("lines", "covered"), ("lines", "count"), ("branches", "covered"), ("branches", "count")]):
            sums[name][at] += summary[kind][key]
    missed.append((summary["branches"]["count"] - summary["branches"]["covered"], str(path)))


def part(reached, there):
    return f"{100 * reached / there:5.1f} % of {there:6}" if there else f"{'none':>17}"


print(f"{'folder':34} {'lines':>17}   {'branches':>17}")
for name in sorted(sums, key=lambda name: (name == "all", name)):
    lines, allLines, branches, allBranches = sums[name]
    print(f"{name:34} {part(lines, allLines)}   {part(branches, allBranches)}")
print("\nmost branches never taken")
for count, path in sorted(missed, reverse=True)[:10]:
    print(f"{count:4} {path}")
