"""The C interface of the shared library, as ctypes sees it."""
import ctypes
import os
from ctypes import POINTER, c_char_p, c_int, c_int32, c_size_t, c_uint8, c_uint16, c_uint32, c_uint64, c_void_p

OK = 1
ABSENT = 3


class Options(ctypes.Structure):
    _fields_ = [
        ("size", c_uint32),
        ("signature", c_uint32),
        ("smbios_major", c_uint8),
        ("smbios_minor", c_uint8),
        ("use_driver", c_uint8),
        ("type_148", c_uint8),
        ("replay", c_char_p),
    ]


class Structure(ctypes.Structure):
    _fields_ = [
        ("name", c_char_p),
        ("bytes", c_void_p),
        ("size", c_uint32),
        ("offset", c_uint32),
        ("index", c_uint32),
        ("instance", c_uint32),
        ("handle", c_uint16),
        ("type", c_uint8),
        ("length", c_uint8),
        ("is_whole", c_uint8),
    ]


class Fact(ctypes.Structure):
    _fields_ = [
        ("kind", c_uint8),
        ("unit", c_uint8),
        ("offset", c_uint16),
        ("size", c_uint16),
        ("state", c_uint8),
        ("is_signed", c_uint8),
        ("is_reference", c_uint8),
        ("is_derived", c_uint8),
        ("key_size", c_uint8),
        ("name_size", c_uint8),
        ("record", c_int32),
        ("reserved", c_void_p),
        ("key", c_char_p),
        ("name", c_char_p),
        ("number", c_uint64),
        ("text_size", c_size_t),
        ("text", c_void_p),
        ("string_size", c_size_t),
        ("string", c_void_p),
    ]


class Finding(ctypes.Structure):
    _fields_ = [
        ("rule", c_char_p),
        ("what", c_char_p),
        ("why", c_char_p),
        ("fix", c_char_p),
        ("key", c_char_p),
        ("found", c_char_p),
        ("expected", c_char_p),
        ("severity", c_uint32),
        ("structure", c_uint32),
        ("offset", c_uint32),
        ("size", c_uint32),
    ]


class FactChange(ctypes.Structure):
    _fields_ = [
        ("key", c_char_p),
        ("name", c_char_p),
        ("a", c_char_p),
        ("b", c_char_p),
        ("record", c_int32),
        ("offset", c_int32),
    ]


class Difference(ctypes.Structure):
    _fields_ = [
        ("change", c_uint32),
        ("structure_a", c_uint32),
        ("structure_b", c_uint32),
        ("place", c_char_p),
        ("source", c_char_p),
        ("facts", POINTER(FactChange)),
        ("fact_count", c_size_t),
    ]


TakeFinding = ctypes.CFUNCTYPE(None, POINTER(Finding), c_void_p)
TakeDifference = ctypes.CFUNCTYPE(None, POINTER(Difference), c_void_p)


def _load() -> ctypes.CDLL:
    name = os.environ.get("QUORLIN_LIBRARY") or ("quorlin.dll" if os.name == "nt" else "libquorlin.so.1")
    library = ctypes.CDLL(name)
    for function, result, arguments in (
        ("last_error", c_char_p, []),
        ("version", c_char_p, []),
        ("facts_open_machine", c_uint32, [POINTER(Options), POINTER(c_void_p)]),
        ("facts_open_file", c_uint32, [c_char_p, POINTER(Options), POINTER(c_void_p)]),
        ("facts_open_memory", c_uint32, [c_char_p, c_size_t, POINTER(Options), POINTER(c_void_p)]),
        ("facts_close", None, [c_void_p]),
        ("facts_version", c_uint32, [c_void_p, POINTER(c_uint8), POINTER(c_uint8)]),
        ("facts_form", c_char_p, [c_void_p]),
        ("facts_remark", c_char_p, [c_void_p]),
        ("facts_bytes", c_void_p, [c_void_p, POINTER(c_size_t)]),
        ("structure_count", c_uint32, [c_void_p]),
        ("structure_at", POINTER(Structure), [c_void_p, c_uint32]),
        ("walk_open", c_uint32, [c_void_p, POINTER(c_void_p)]),
        ("walk_close", None, [c_void_p]),
        ("walk_begin", c_uint32, [c_void_p, c_uint32, c_int]),
        ("walk_next", POINTER(Fact), [c_void_p]),
        ("walk_word", c_char_p, [c_void_p, POINTER(c_uint32)]),
        ("walk_source", c_char_p, [c_void_p, c_uint32]),
        ("check", c_uint32, [c_void_p, TakeFinding, c_void_p]),
        ("diff", c_uint32, [c_void_p, c_void_p, POINTER(c_char_p), c_size_t, TakeDifference, c_void_p]),
        ("redact", c_uint32, [c_void_p, c_char_p, c_size_t, c_int, c_char_p]),
        ("status_text", c_char_p, [c_uint32]),
        ("unit_text", c_char_p, [c_uint32]),
        ("state_text", c_char_p, [c_uint32]),
    ):
        entry = getattr(library, "quorlin_" + function)
        entry.restype = result
        entry.argtypes = arguments
    return library


library = _load()
