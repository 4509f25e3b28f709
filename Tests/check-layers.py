#!/usr/bin/env python3
"""Fails when an #include goes up or sideways in the tree, or into another library's private headers.

    check-layers.py FOLDER    the root of the tree
"""
import pathlib
import re
import sys

STORE = "Packages/FERROXExternal/StructureStore"
HARDWARE = "Packages/FERROXExternal/FERROXLib"

# Each library, from the top down, and the libraries whose headers it may include beside its own.
MAY_USE = {
    "Tools": ["CInterface", "Sources", "Packages/CrashReport", "Packages/Sample", STORE, HARDWARE, "Packages/Debug",
              "Packages/Analysis", "Packages/Standard", "Packages/Format", "Packages/OS"],
    "CInterface": ["Sources", STORE, HARDWARE, "Packages/Debug", "Packages/Analysis", "Packages/Standard",
                   "Packages/Format", "Packages/OS"],
    "Sources": ["Packages/CrashReport", STORE, HARDWARE, "Packages/Debug", "Packages/Format", "Packages/OS"],
    "Packages/CrashReport": ["Packages/OS"],
    STORE: [HARDWARE, "Packages/Container", "Packages/Debug", "Packages/Format", "Packages/OS"],
    HARDWARE: ["Packages/Debug", "Packages/Format", "Packages/OS"],
    "Packages/Debug": ["Packages/Container", "Packages/OS"],
    "Packages/Container": ["Packages/OS"],
    "Packages/OS": ["Packages/Format"],  # what Linux shows of its firmware begins with an entry point
    "Packages/Analysis": ["Packages/Standard", "Packages/Format"],
    "Packages/Standard": ["Packages/Format"],
    "Packages/Format": [],
    "Packages/Sample": [],
}
# Private headers, and the folders that may include them.
PRIVATE = {
    r"Packages/Container/Sources/": ["Packages/Container/"],
    r"Packages/Debug/DebugInternal\.h": ["Packages/Debug/"],
    r"Packages/Standard/\w*Rows\.h": ["Packages/Standard/"],
    r"Packages/Sample/(?!Sample\.h)": ["Packages/Sample/"],
    HARDWARE + r"/Sources/(?!Protocol\.h)": [HARDWARE + "/"],
    STORE + r"/StoreParts\.h": [STORE + "/"],
    r"Packages/OS/Linux/": ["Packages/OS/Linux/", HARDWARE + "/Sources/Linux/"],
    r"Packages/OS/Windows/": ["Packages/OS/Windows/", HARDWARE + "/Sources/WinFERROX.h"],
}
# Where sources may ask which architecture they are compiled for.
ARCHITECTURE = re.compile(r"\b(__x86_64__|__i386__|__aarch64__|__arm__|_M_X64|_M_IX86|_M_ARM64)\b")
# Where the system's headers may be included, and headers with a file extension that may be included everywhere.
SYSTEM_FOLDERS = ("Packages/OS/Linux/", "Packages/OS/Windows/", HARDWARE + "/Sources/Linux/")
PORTABLE = re.compile(r"rapidjson/|(getopt|zlib|stdbool|stddef|stdint)\.h")


def library_of(path):
    return next((name for name in MAY_USE if path.startswith(name + "/")), None)


def fault(file, included, is_quoted):
    """What is wrong with an #include, or None."""
    if not is_quoted:
        if included == "cpuid.h" and not file.startswith("Packages/OS/"):
            return "belongs to the OS layer"
        if "." in included and not PORTABLE.match(included) and not file.startswith(SYSTEM_FOLDERS):
            return "a header of the system"
        return None
    library, used = library_of(file), library_of(included)
    if used is None:
        return "not a path from the root to a library's header"
    if used != library and used not in MAY_USE[library]:
        return f"{library} may not use {used}"
    for pattern, folders in PRIVATE.items():
        if re.match(pattern, included) and not file.startswith(tuple(folders)):
            return "a private header"
    return None


def main():
    root = pathlib.Path(sys.argv[1])
    files = [path for top in ("Tools", "CInterface", "Sources", "Packages") for path in sorted((root / top).rglob("*"))
             if path.suffix in (".h", ".cpp", ".def")]
    faults = 0
    for path in files:
        file = path.relative_to(root).as_posix()
        for number, line in enumerate(path.read_text().splitlines(), 1):
            include = re.match(r'\s*#\s*include\s*(["<])([^">]+)', line)
            problem = include and fault(file, include[2], include[1] == '"')
            if problem:
                print(f"{file}:{number}: {include[2]}: {problem}")
                faults += 1
            if ARCHITECTURE.search(line) and not file.startswith(SYSTEM_FOLDERS):
                print(f"{file}:{number}: asks for the architecture")
                faults += 1
    if not files:
        sys.exit("no source files")
    sys.exit(1 if faults else 0)


main()
