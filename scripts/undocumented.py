#!/usr/bin/env python3
"""undocumented.py XML-FOLDER: prints what has no docstring, and fails when there is any. Doxygen's own warnings leave
out friends, cases of enumerations, and what is declared in a namespace without a page of its own.

What needs no words:
- what the compiler writes or what cannot be called (`= default`, `= delete`), and destructors;
- the one field of a record: the record's docstring is about it;
- the cases of an enumeration of which none has words: its docstring is about all of them;
- what overrides or hides a documented member of the base, which doxygen shows;
- the members of a specialisation, which its template tells of, and a `std::hash`;
- what is private, as fields are whose names end in an underscore: doxygen takes those of a private union for public."""

import pathlib
import sys
import xml.etree.ElementTree as ElementTree


def documented(node):
    parts = [node.find("briefdescription"), node.find("detaileddescription")]
    return any("".join(part.itertext()).strip() for part in parts if part is not None)


def needs_none(member, record):
    arguments = (member.findtext("argsstring") or "").replace(" ", "")
    fields = record.findall(".//memberdef")
    return (
        arguments.endswith(("=default", "=delete"))
        or member.findtext("name").startswith("~")
        or (member.get("kind") == "variable" and len(fields) == 1 and documented(record))
        or (member.get("kind") == "variable" and member.findtext("name").endswith("_"))
        or member.find("reimplements") is not None
        or "<" in record.findtext("compoundname")
    )


def place(node, name):
    location = node.find("location")
    return location.get("file"), int(location.get("line")), name


def undocumented(compound, private):
    if (compound.findtext("compoundname") + "::").startswith(private):
        return
    if compound.get("kind") in ("class", "struct", "union", "concept") and not documented(compound):
        yield place(compound, compound.findtext("compoundname"))
    for member in compound.iter("memberdef"):
        if member.get("prot") == "private" or (member.findtext("qualifiedname") or "").startswith(private):
            continue
        name = member.findtext("name") + (member.findtext("argsstring") or "")
        if not documented(member) and not needs_none(member, compound):
            yield place(member, name)
        cases = member.findall("enumvalue")
        if any(documented(case) for case in cases):
            yield from (place(member, case.findtext("name")) for case in cases if not documented(case))


def is_ours(compound):
    return compound.get("kind") != "page" and not compound.findtext("compoundname").startswith("std::")


trees = [ElementTree.parse(path) for path in pathlib.Path(sys.argv[1]).glob("*.xml")]
compounds = [compound for tree in trees for compound in tree.iter("compounddef") if is_ours(compound)]
private = tuple(compound.findtext("compoundname") + "::" for compound in compounds if compound.get("prot") == "private")
found = {entry for compound in compounds for entry in undocumented(compound, private)}
for file, line, name in sorted(found):
    print(f"{file}:{line}: {name} has no docstring", file=sys.stderr)
sys.exit(1 if found else 0)
