#!/usr/bin/env python3
"""coverage-table.py ROOT FILE: the lines and branches that were reached, by folder, from what llvm-cov exports."""
import collections
import json
import pathlib
import sys

root = pathlib.Path(sys.argv[1])
sums = collections.defaultdict(lambda: [0, 0, 0, 0])
for file in json.load(open(sys.argv[2]))["data"][0]["files"]:
    path = pathlib.Path(file["filename"])
    if not path.is_relative_to(root / "zorvan"):
        continue
    folder = path.relative_to(root).parent
    folder = folder.parent if folder.name == "internal" else folder
    summary = file["summary"]
    for name in (str(folder), "all"):
        for at, (kind, key) in enumerate(
                [("lines", "covered"), ("lines", "count"), ("branches", "covered"), ("branches", "count")]):
            sums[name][at] += summary[kind][key]


def part(reached, there):
    return f"{100 * reached / there:5.1f} % of {there:6}" if there else f"{'none':>17}"


print(f"{'folder':34} {'lines':>17}   {'branches':>17}")
for name in sorted(sums, key=lambda name: (name == "all", name)):
    lines, allLines, branches, allBranches = sums[name]
    print(f"{name:34} {part(lines, allLines)}   {part(branches, allBranches)}")
