#!/usr/bin/python3
"""Prints the items of a table image, or of this machine, by the C interface.

    python3 items.py [IMAGE]

Needs only the shared library: on Windows in the folder of this file, elsewhere where the loader finds it
(LD_LIBRARY_PATH).
"""
import ctypes
import os
import sys

OK, KIND_ITEM = 1, 0


class Item(ctypes.Structure):
    _fields_ = [
        ("key", ctypes.c_char_p),
        ("value", ctypes.c_char_p),
        ("index", ctypes.c_uint32),
        ("structure", ctypes.c_uint32),
        ("kind", ctypes.c_uint32),
    ]


HERE = os.path.dirname(os.path.abspath(__file__))
library = ctypes.CDLL(os.path.join(HERE, "quorlin.dll") if os.name == "nt" else "libquorlin.so.1")
library.quorlin_last_error.restype = ctypes.c_char_p
# Handles are pointers, which ctypes would cut to 32 bits.
library.quorlin_next.argtypes = [ctypes.c_void_p, ctypes.POINTER(Item)]
library.quorlin_find.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_uint32, ctypes.POINTER(Item)]
library.quorlin_get.argtypes = [ctypes.c_void_p, ctypes.c_uint32, ctypes.POINTER(Item)]
library.quorlin_close.argtypes = [ctypes.c_void_p]


def main(arguments):
    table = ctypes.c_void_p()
    if arguments:
        status = library.quorlin_open_file(os.fsencode(arguments[0]), None, ctypes.byref(table))
    else:
        status = library.quorlin_open_machine(None, ctypes.byref(table))
    if status != OK:
        sys.exit(f"{arguments[0] if arguments else 'this machine'}: {library.quorlin_last_error().decode()}")
    # Values are bytes: a firmware's strings come in whatever encoding they have.
    output = sys.stdout.buffer
    item = Item()
    while library.quorlin_next(table, item) == OK:
        if item.kind == KIND_ITEM:
            output.write(b"  %s: %s\n" % (item.key, item.value))
        else:
            output.write(b"%s\n" % item.key)
    if library.quorlin_find(table, b"Serial Number", 0, item) == OK:
        title = Item()
        if library.quorlin_get(table, item.structure, title) == OK:
            output.write(b"First serial number: %s (%s)\n" % (item.value, title.key))
    library.quorlin_close(table)


main(sys.argv[1:])
