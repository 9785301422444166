#!/usr/bin/env python3
"""exports.py ROOT LIBRARY...: fails for what a library exports although no header shows it, and prints that.

A header that is installed shows what programs use, one below a folder internal/ what our own libraries have of each
other. What no header shows belongs into an unnamed namespace."""
import re
import subprocess
import sys
from pathlib import Path

root, libraries = Path(sys.argv[1]), sys.argv[2:]
words = set()
for header in root.glob("zorvan/**/*.h"):
    words.update(re.findall(r"\w+", header.read_text()))

# What the compiler adds to a class, and what may come before a name.
addition = re.compile(r"^(typeinfo (name )?for|(construction )?vtable for|VTT for|guard variable for|"
                      r"(non-)?virtual (thunk|override thunk) to|reference temporary #\d+ for) ")
# Made by the compiler and its runtime for every library.
runtime = re.compile(r"^(__(a|t|m)san|__odr_asan|__sancov|__gcov|_init$|_fini$|_edata$|_end$|__bss_start$)")


def outermost_of_mangled(symbol):
    """The same of a name whose constraints the tools cannot read yet: each part stands behind its length."""
    rest = symbol[2:].lstrip("NKRO")
    while length := re.match(r"\d+", rest):
        end = length.end() + int(length[0])
        part, rest = rest[length.end():end], rest[end:]
        if part != "zorvan" and part not in spaces:
            return part
    return None


def outermost(symbol):
    """The class or function of ours that a symbol belongs to: the first name after the namespaces."""
    if symbol.startswith("_Z"):
        return outermost_of_mangled(symbol)
    name = addition.sub("", symbol)
    # A template's name comes behind the type of its result, an argument's before that of its own.
    at, depth = None, 0
    for match in re.finditer(r"[<(]|[>)]|\bzorvan::", name):
        if match[0] in "<(":
            depth += 1
            if match[0] == "(" and depth == 1 and at is not None:
                break
        elif match[0] in ">)":
            depth -= 1
        elif depth == 0:
            at = match.end()
    if at is None:
        return None
    for part in re.findall(r"operator\W+|[~\w]+", name[at:]):
        if part in spaces:
            continue
        return part.lstrip("~")
    return None


spaces = set(re.findall(r"^namespace (?:zorvan::)?(\w+) ?\{", "\n".join(
    header.read_text() for header in root.glob("zorvan/**/*.h")), re.M)) - {"zorvan"}
count, failures = 0, []
for library in libraries:
    listed = subprocess.run(["nm", "-D", "--defined-only", "-C", library], capture_output=True, text=True, check=True)
    for line in listed.stdout.splitlines():
        symbol = line.split(" ", 2)[2]
        count += 1
        of_std = re.match(r"std::hash<zorvan::(\w+)", symbol)
        name = symbol if re.fullmatch(r"zorvan\w+", symbol) else of_std[1] if of_std else outermost(symbol)
        shown = name is not None and (name in words or name.startswith("operator"))
        if not shown and not runtime.match(symbol):
            failures.append(f"{Path(library).name}: {symbol}")
print(f"{count} symbols of {len(libraries)} libraries")
if not libraries or count < 1000:
    sys.exit("hardly anything is exported")
if failures:
    sys.exit("\n".join([*failures, f"{len(failures)} are exported although no header shows them"]))
