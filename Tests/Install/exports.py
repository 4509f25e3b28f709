#!/usr/bin/python3
"""Checks that a library exports what the public headers mark with QUORLIN_API, and nothing else.

    exports.py LIBRARY HEADER-FOLDER [SYMBOLS]

LIBRARY is libquorlin.so or quorlin.dll, and HEADER-FOLDER the folder of the installed headers. SYMBOLS is the Debian
package's list of the same names, each with the version that introduced it.
"""
import pathlib
import re
import subprocess
import sys


def marked(folder):
    names = set()
    for header in pathlib.Path(folder).rglob("*.h"):
        text = re.sub(r"//.*|/\*[\s\S]*?\*/|^\s*#.*", "", header.read_text(), flags=re.M)
        names.update(re.findall(r"QUORLIN_API\s[^;(]*?(\w+)\(", text))
    return names


def exported(library):
    if library.endswith(".dll"):
        listing = subprocess.run(["objdump", "-p", library], check=True, capture_output=True, text=True).stdout
        table = listing[listing.index("[Ordinal/Name Pointer] Table"):]
        return set(re.findall(r"^\s*\[\s*\d+\](?:\s+\+base\[\s*\d+\]\s+[0-9a-f]+)?\s+(\S+)$", table, flags=re.M))
    listing = subprocess.run(["nm", "-D", "--defined-only", library], check=True, capture_output=True, text=True).stdout
    rows = [line.split() for line in listing.splitlines()]
    # The symbol of the version node isn't an export.
    return {name.split("@")[0] for _, kind, name in rows if kind != "A"}


def listed(symbols):
    """The names in a Debian symbols file, which has header lines and then " NAME@VERSION-NODE SINCE"."""
    lines = [line for line in pathlib.Path(symbols).read_text().splitlines() if line.startswith(" ")]
    # The file also lists the symbol of the version node.
    return {name for name, node in (line.split()[0].split("@") for line in lines) if name != node}


def main(library, folder, symbols=None):
    wanted, found = marked(folder), exported(library)
    problems = [
        f"{library}: {title}: {name}"
        for title, names in (
            ("marked and not exported", wanted - found),
            ("exported and not marked", found - wanted),
        )
        for name in sorted(names)
    ]
    if symbols is not None:
        names = listed(symbols)
        problems += [f"{symbols}: add the line ' {name}@QUORLIN_1 THIS-VERSION'" for name in sorted(found - names)]
        problems += [f"{symbols}: not exported: {name}" for name in sorted(names - found)]
    for problem in problems:
        print(problem)
    sys.exit(1 if problems else 0)


main(*sys.argv[1:])
