#!/usr/bin/env python3
"""bill.py ROOT TREE: prints the bill of materials of the libraries that were built in TREE, as an SPDX
2.3 document: each of them, the components that it is linked with by its own file, and their licences, which
docs/licences.md tells. Their versions are those of the packages that own the files on this machine.

Fails when a library is linked with a file of which that page knows nothing."""

import datetime
import functools
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

root, tree = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=False).stdout


# What the page says of a file that no library is linked with, and what that is to the library.
UNLINKED = {"opened": "RUNTIME_DEPENDENCY_OF", "compiled in": "CONTAINED_BY"}


def rows():
    """The table: the files, what is said of them, the component, the licence and who has it."""
    for line in (root / "docs/licences.md").read_text().splitlines():
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if len(cells) == 4 and cells[0].startswith("`"):
            yield re.findall(r"`([^`]+)`", cells[0]), cells[0], *cells[1:]


def components():
    """Of each file name in the table, without its version: the component and the licence."""
    return {stem(file): (name, terms) for files, _, name, terms, _ in rows() for file in files}


def unlinked():
    """Component, licence, what it is to the library, and the library."""
    for _, said, name, terms, user in rows():
        for how, relation in UNLINKED.items():
            if f"({how}" in said:
                yield name, terms, relation, "libzorvan-" + re.sub("([a-z])([A-Z])", r"\1-\2", user).lower()


def stem(file):
    return file.split(".so")[0]


def identifier(name):
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.]+", "-", name).strip("-")


def licence(text):
    """What the page says, where that is an expression of SPDX's own; else as a comment."""
    if re.fullmatch(r"[A-Za-z0-9.+-]+(( AND | OR | WITH )[A-Za-z0-9.+-]+)*", text):
        return {"licenseConcluded": text, "licenseDeclared": text}
    return {"licenseConcluded": "NOASSERTION", "licenseDeclared": "NOASSERTION", "licenseComments": text}


@functools.cache
def version(path):
    owner = output("dpkg-query", "--search", os.path.realpath(path)) or output("dpkg-query", "--search", path)
    package = owner.split(": ")[0].split(",")[0].strip()
    return output("dpkg-query", "-W", "-f", "${Version}", package) if package else ""


def linked(library):
    """The names of the files that it asks for itself, and where the loader finds them."""
    wanted = re.findall(r"\(NEEDED\).*\[(.+)\]", output("readelf", "--dynamic", library))
    places = dict(re.findall(r"(\S+) => (\S+)", output("ldd", library)))
    return [(name, places.get(name, "")) for name in wanted]


def package(name, **rest):
    return {"name": name, "SPDXID": identifier(name), "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
            "copyrightText": "NOASSERTION", **rest}


def main():
    known = components()
    commit = output("git", "-C", str(root), "rev-parse", "HEAD").strip()
    seconds = int(os.environ.get("SOURCE_DATE_EPOCH") or output("git", "-C", str(root), "log", "-1", "--format=%ct"))
    packages, relations, unknown = {}, [], set()
    for library in sorted(tree.rglob("libzorvan-*.so.*.*.*")):
        if library.is_symlink():
            continue
        name = stem(library.name)
        digest = hashlib.sha256(library.read_bytes()).hexdigest()
        packages[name] = package(name, versionInfo=library.name.split(".so.")[1], packageFileName=library.name,
                                 checksums=[{"algorithm": "SHA256", "checksumValue": digest}],
                                 licenseConcluded="NOASSERTION", licenseDeclared="NOASSERTION")
        relations.append(("SPDXRef-DOCUMENT", "DESCRIBES", identifier(name)))
        for file, path in linked(library):
            part = stem(file)
            if not part.startswith("libzorvan-"):
                if part not in known:
                    unknown.add(file)
                    continue
                part, terms = known[part]
                packages.setdefault(part, package(part, **licence(terms)))
                if version(path):
                    packages[part]["versionInfo"] = version(path)
            relations.append((identifier(name), "DYNAMIC_LINK", identifier(part)))
    if unknown or not packages:
        sys.exit("docs/licences.md does not tell of " + (", ".join(sorted(unknown)) or "anything built here"))
    for part, terms, relation, user in unlinked():
        if user in packages:
            packages.setdefault(part, package(part, **licence(terms)))
            relations.append((identifier(part), relation, identifier(user)))
    created = datetime.datetime.fromtimestamp(seconds, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
    json.dump({"spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT", "name": "zorvan",
               "documentNamespace": f"https://zorvan.example/spdx/{commit}",
               "creationInfo": {"created": created, "creators": ["Organization: Zorvan", "Tool: bill.py"]},
               "packages": list(packages.values()),
               "relationships": [{"spdxElementId": one, "relationshipType": kind, "relatedSpdxElement": other}
                                 for one, kind, other in sorted(set(relations))]},
              sys.stdout, indent=1)
    print()


main()
