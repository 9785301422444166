#!/usr/bin/env python3
"""header-table.py [--check]: writes docs/headers.md, which tells for each public header the CMake target
whose library it needs; with --check it only says whether that page is as it would be written."""
import re
import sys
from pathlib import Path

root = Path(__file__).resolve().parent.parent
page = root / "docs/headers.md"
keywords = {"APART", "LOADED", "CLOSED", "SOURCES", "USES", "SHOWS", "NEEDS"}


def libraries():
    """Each component: the paths of its sources without suffix, and what it uses. Those that stand apart last."""
    found, apart = {}, {}
    for file in [*sorted(root.glob("zorvan/**/CMakeLists.txt")), *sorted(root.glob("zorvan/**/*.cmake"))]:
        text = re.sub(r"#.*", "", file.read_text())
        for body in re.findall(r"zorvan_library\(([^)]*)\)", text):
            name, *words = body.replace("${PROJECT_SOURCE_DIR}", str(root)).split()
            parts, part = {}, None
            for word in words:
                if word in keywords:
                    part = parts.setdefault(word, [])
                else:
                    part.append(word)
            sources = {(file.parent / source).with_suffix("") for source in parts["SOURCES"]}
            (apart if {"APART", "LOADED"} & parts.keys() else found)[name] = (sources, parts.get("USES", []))
    return found | apart


def closure(name, found):
    """The component, and all that come with it."""
    return {name}.union(*(closure(used, found) for used in found[name][1]))


def includes(header):
    for path in re.findall(r"#include <(zorvan/[^>]+)>", header.read_text()):
        if (root / path).exists():
            yield root / path


class Targets:
    """A header belongs to the component that has the source of its name, beside it or, where that is beside no
    header, in another folder. Any other one belongs to the first with a source in its folder, or of all, that
    brings along what the headers it includes belong to."""

    def __init__(self):
        self.found = libraries()
        self.owners = {source: name for name, (sources, _) in self.found.items() for source in sources}
        self.elsewhere = {source.name: name for source, name in self.owners.items()
                          if not source.with_suffix(".h").exists()}
        self.known = {}

    def of(self, header):
        if header not in self.known:
            self.known[header] = None  # for headers that include each other
            self.known[header] = (self.owners.get(header.with_suffix("")) or self.elsewhere.get(header.stem)
                                  or self.first(header))
        return self.known[header]

    def first(self, header):
        needed = {self.of(other) for other in includes(header)} - {None}
        folder = header.parent.parent if header.parent.name == "internal" else header.parent
        here = [name for name, (sources, _) in self.found.items()
                if any(folder == source.parent for source in sources)]
        able = [name for name in here or self.found if needed <= closure(name, self.found)]
        return (able or here)[0]


def text():
    targets = Targets()
    headers = [path for path in sorted(root.glob("zorvan/**/*.h")) if path.parent.name != "internal"]
    lines = ["# Headers and their targets", "",
             "Written by `scripts/header-table.py`. What to link for a header; what its target uses comes along.", "",
             "| header | target |", "|---|---|"]
    lines += [f"| `<{path.relative_to(root)}>` | `Zorvan::{targets.of(path)}` |" for path in headers]
    return "\n".join(lines) + "\n"


if "--check" not in sys.argv:
    page.write_text(text())
elif not page.exists() or page.read_text() != text():
    sys.exit("docs/headers.md is out of date: run scripts/header-table.py")
