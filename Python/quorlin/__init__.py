"""SMBIOS tables as typed facts, by the newest level of the SMBIOS standard.

    import quorlin

    table = quorlin.this_machine()          # usually needs root; or quorlin.open("machine.bin")
    for device in table.of_type(17):
        size = device.facts["memory_size"]
        print(device.facts["device_locator"].value, size.value, size.unit)

A Table is a sequence of Structures. A Structure has facts, a dict from key to Fact. A Fact has a value, which is None
unless the firmware states one; its state says why. Keys are those of the program: `quorlin facts --format json`.

Tables can't change, and may be used by any number of threads. Errors are raised as quorlin.Error.
The package needs the shared library, libquorlin.so.1 or quorlin.dll. If the system's loader doesn't find it, set the
environment variable QUORLIN_LIBRARY to its path.
"""
import ctypes
import os
from collections.abc import Sequence
from dataclasses import dataclass
from typing import Any, Dict, Iterator, List, Optional, Tuple, Union, overload

from . import _library
from ._library import library as _c

__all__ = ["Difference", "Error", "Fact", "FactChange", "Finding", "Structure", "Table", "from_bytes", "open",
           "this_machine"]
__version__: str = _c.quorlin_version().decode()

_NO_STRUCTURE = 0xFFFFFFFF
_SEVERITIES = ("note", "warning", "error")
_CHANGES = ("removed", "added", "changed", "replaced", "moved")
_KINDS = ("number", "text", "code", "bits", "handle", "uuid", "date", "version", "bytes", "list")


class Error(Exception):
    """A table can't be opened, or isn't analysed. The text says why and, of an opening, what to try."""


@dataclass(frozen=True)
class Fact:
    """One fact of a structure."""

    key: str
    """Stable, in snake_case, such as "memory_size"."""
    name: str
    """The standard's name, such as "Memory Size"."""
    kind: str
    """"number", "text", "code", "bits", "handle", "uuid", "date", "version", "bytes" or "list"."""
    state: str
    """"value", or why there is none: "unknown", "none", "absent", "reserved" (a code that the standard doesn't assign),
    "filler" (a text that firmware was delivered with) or "broken" (refers to something that isn't there)."""
    decoded: Any
    """What the bytes read, whatever the state: None for the states "none", "absent" and "broken". A number or handle is
    an int; bits are a list of words; bytes are bytes; a list is a list of dicts from key to Fact; the other kinds are
    text, a reserved code such as "0x26". Bytes of a text that aren't UTF-8 are replaced; `raw` has them."""
    unit: str
    """Of a number, such as "byte" or "MT/s"; empty if it has none."""
    raw: bytes
    """The bytes that it comes from: of a text, the string's number and then the string."""
    offset: int
    """Of its bytes in the structure."""
    size: int
    """Of its bytes without the string; 0 for derived facts."""
    sources: Tuple[str, ...]
    """Of a derived fact, the keys of the facts that it comes from."""

    @property
    def value(self) -> Any:
        """`decoded` if the state is "value", or "reserved" for a code; otherwise None."""
        is_value = self.state == "value" or (self.state == "reserved" and self.kind == "code")
        return self.decoded if is_value else None


@dataclass(frozen=True)
class Structure:
    """One structure of a table."""

    table: "Table"
    index: int
    """Among all structures of the table, from 0."""
    type: int
    name: str
    """Of its type, such as "Memory Device"."""
    handle: int
    instance: int
    """Among the structures of its type, from 1."""
    offset: int
    """In the table."""
    length: int
    """Of its formatted area, as it states it."""
    is_whole: bool
    """False if the table ends within it."""
    bytes: bytes
    """Its bytes, with its strings."""

    @property
    def facts(self) -> Dict[str, Fact]:
        """Its facts by key, in the order of the standard. Fields that it is too short for aren't there."""
        return self.read_facts()

    def read_facts(self, absent: bool = False) -> Dict[str, Fact]:
        """Its facts by key; with `absent`, also those for which the structure is too short."""
        walk = ctypes.c_void_p()
        _check(_c.quorlin_walk_open(self.table._handle, ctypes.byref(walk)))
        try:
            _c.quorlin_walk_begin(walk, self.index, absent)
            return _read_facts(walk, self.bytes)
        finally:
            _c.quorlin_walk_close(walk)

    def __repr__(self) -> str:
        return f"<Structure type {self.type} ({self.name}), handle {self.handle:#06x}>"


@dataclass(frozen=True)
class Finding:
    """What is wrong with a table, by one rule."""

    rule: str
    """Its id, such as "QR0501", which never changes."""
    severity: str
    """"error", "warning" or "note"."""
    what: str
    why: str
    """It matters."""
    fix: str
    """What firmware should do."""
    structure: Optional[Structure]
    """None for the table as a whole."""
    key: str
    """Of the fact that is wrong; empty for the structure as a whole."""
    offset: int
    """Of the wrong bytes in the table."""
    size: int
    found: str
    expected: str


@dataclass(frozen=True)
class FactChange:
    """A fact that differs between two tables, or a run of bytes."""

    key: str
    name: str
    a: Optional[str]
    """The value as people read it, or hexadecimal digits; None where the structure doesn't have the fact."""
    b: Optional[str]
    record: Optional[int]
    """Of a fact in a list."""
    offset: Optional[int]
    """Of a run of bytes, in its structure."""


@dataclass(frozen=True)
class Difference:
    """What differs in one structure."""

    change: str
    """"removed", "added", "changed", "replaced" (the place has another part) or "moved" (the part was elsewhere)."""
    a: Optional[Structure]
    b: Optional[Structure]
    place: str
    """Its locator or designation."""
    source: str
    """Of a moved part, where it was."""
    facts: Tuple[FactChange, ...]


class Table(Sequence):
    """A table: a sequence of its structures, up to and including the first End-of-Table."""

    def __init__(self, handle: ctypes.c_void_p) -> None:
        self._handle = handle
        major, minor, size = ctypes.c_uint8(), ctypes.c_uint8(), ctypes.c_size_t()
        _c.quorlin_facts_version(handle, ctypes.byref(major), ctypes.byref(minor))
        self.version: Tuple[int, int] = (major.value, minor.value)
        """The SMBIOS version."""
        self.form: str = _c.quorlin_facts_form(handle).decode()
        """Where the table came from: "this machine", "dump", "table", "windows" or "sysfs"."""
        self.remark: str = _c.quorlin_facts_remark(handle).decode()
        """What is wrong with the table as a whole; empty if nothing is."""
        self.bytes: bytes = ctypes.string_at(_c.quorlin_facts_bytes(handle, ctypes.byref(size)), size.value)
        """Its bytes."""

    def __del__(self) -> None:
        if handle := self.__dict__.pop("_handle", None):
            _c.quorlin_facts_close(handle)

    def __len__(self) -> int:
        return int(_c.quorlin_structure_count(self._handle))

    @overload
    def __getitem__(self, index: int) -> Structure: ...

    @overload
    def __getitem__(self, index: slice) -> List[Structure]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[Structure, List[Structure]]:
        if isinstance(index, slice):
            return [self[place] for place in range(*index.indices(len(self)))]
        place = range(len(self))[index]
        found = _c.quorlin_structure_at(self._handle, place).contents
        return Structure(self, place, found.type, found.name.decode(), found.handle, found.instance, found.offset,
                         found.length, bool(found.is_whole), ctypes.string_at(found.bytes, found.size))

    def of_type(self, type: int) -> Iterator[Structure]:
        """The structures of a type."""
        return (structure for structure in self if structure.type == type)

    def by_handle(self, handle: int) -> Optional[Structure]:
        """The first structure with this handle, or None."""
        return next((structure for structure in self if structure.handle == handle), None)

    def check(self) -> List[Finding]:
        """What is wrong with the table, by all rules."""
        findings: List[Finding] = []

        def take(pointer: Any, _: Any) -> None:
            found = pointer.contents
            findings.append(Finding(_text(found.rule), _SEVERITIES[found.severity], _text(found.what), _text(found.why),
                                    _text(found.fix), self._at(found.structure), _text(found.key), found.offset,
                                    found.size, _text(found.found), _text(found.expected)))

        _require(_c.quorlin_check(self._handle, _library.TakeFinding(take), None))
        return findings

    def diff(self, other: "Table", ignore: Sequence = ()) -> List[Difference]:
        """What differs between this table and another one, but for facts with the keys in `ignore`."""
        differences: List[Difference] = []

        def take(pointer: Any, _: Any) -> None:
            found = pointer.contents
            facts = (found.facts[place] for place in range(found.fact_count))
            differences.append(Difference(_CHANGES[found.change], self._at(found.structure_a),
                                          other._at(found.structure_b), _text(found.place), _text(found.source),
                                          tuple(_change(fact) for fact in facts)))

        keys = (ctypes.c_char_p * len(ignore))(*(key.encode() for key in ignore))
        _require(_c.quorlin_diff(self._handle, other._handle, keys, len(ignore), _library.TakeDifference(take), None))
        return differences

    def redacted(self, key: bytes, keep_vendor: bool = False) -> bytes:
        """The table's bytes with pseudonyms in place of serial numbers, asset tags, UUIDs and MAC addresses. Under one
        key, which has 16 bytes or more, equal values stay equal. Structures of unknown types are blanked unless
        `keep_vendor` is true."""
        copy = ctypes.create_string_buffer(len(self.bytes))
        _require(_c.quorlin_redact(self._handle, bytes(key), len(key), keep_vendor, copy))
        return copy.raw

    def _at(self, index: int) -> Optional[Structure]:
        return None if index == _NO_STRUCTURE else self[index]


def open(path: Union[str, "os.PathLike[str]"], version: Optional[Tuple[int, int]] = None) -> Table:
    """Opens an image: a dump that begins with an entry point, a bare table, the answer of Windows' firmware-table call,
    any of them compressed with gzip; or a folder with the files smbios_entry_point and DMI. `version` is the SMBIOS
    version of a bare table, which doesn't state it."""
    return _opened(_c.quorlin_facts_open_file, _path(path), _options(version))


def from_bytes(image: bytes, version: Optional[Tuple[int, int]] = None) -> Table:
    """Opens an image in memory, in any form that `open` takes."""
    return _opened(_c.quorlin_facts_open_memory, bytes(image), len(image), _options(version))


def this_machine(use_driver: bool = False, replay: Optional[Union[str, "os.PathLike[str]"]] = None) -> Table:
    """Opens the table of this machine, which usually needs root. With `use_driver`, goes on to physical memory if the
    system offers no table; on Windows that installs the kernel driver. With `replay`, opens that of the recorded
    machine in this folder, which `quorlin record` wrote."""
    options = _options(None)
    options.use_driver = use_driver
    if replay is not None:
        options.replay = _path(replay)
    return _opened(_c.quorlin_facts_open_machine, options)


def _path(path: Union[str, "os.PathLike[str]"]) -> bytes:
    return os.fspath(path).encode("utf-8", "surrogateescape")


def _options(version: Optional[Tuple[int, int]]) -> _library.Options:
    options = _library.Options(size=ctypes.sizeof(_library.Options))
    if version is not None:
        options.smbios_major, options.smbios_minor = version
    return options


def _opened(function: Any, *arguments: Any) -> Table:
    handle = ctypes.c_void_p()
    _check(function(*arguments, ctypes.byref(handle)))
    return Table(handle)


def _text(text: bytes) -> str:
    return text.decode("utf-8", "replace")


def _change(fact: _library.FactChange) -> FactChange:
    def value(text: Optional[bytes]) -> Optional[str]:
        return None if text is None else _text(text)

    def number(place: int) -> Optional[int]:
        return None if place < 0 else place

    return FactChange(_text(fact.key), _text(fact.name), value(fact.a), value(fact.b), number(fact.record),
                      number(fact.offset))


def _require(status: int) -> None:
    if status != _library.OK:
        raise Error(_text(_c.quorlin_status_text(status)))


def _check(status: int) -> None:
    if status != _library.OK:
        raise Error(_c.quorlin_last_error().decode("utf-8", "replace"))


def _read_facts(walk: ctypes.c_void_p, structure: bytes) -> Dict[str, Fact]:
    facts: Dict[str, Fact] = {}
    records: List[Dict[str, Fact]] = []
    while found := _c.quorlin_walk_next(walk):
        found = found.contents
        fact = _fact(walk, found, structure)
        if found.record < 0:
            facts[fact.key] = fact
            if fact.kind == "list" and fact.decoded is not None:
                records = fact.decoded
        else:
            if found.record == len(records):
                records.append({})
            records[found.record][fact.key] = fact
    return facts


def _fact(walk: ctypes.c_void_p, found: _library.Fact, structure: bytes) -> Fact:
    kind = _KINDS[found.kind]
    raw = structure[found.offset:found.offset + found.size]
    state = _c.quorlin_state_text(found.state).decode()
    sources = []
    while source := _c.quorlin_walk_source(walk, len(sources)):
        sources.append(source.decode())
    decoded: Any
    if state in ("none", "absent", "broken"):
        decoded = None
    elif kind in ("number", "handle"):
        decoded = ctypes.c_int64(found.number).value if found.is_signed else found.number
    elif kind == "bits":
        decoded = []
        bit = ctypes.c_uint32()
        while word := _c.quorlin_walk_word(walk, ctypes.byref(bit)):
            decoded.append(word.decode())
    elif kind == "bytes":
        decoded = raw
    elif kind == "list":
        decoded = []
    elif kind == "code" and state == "reserved":
        decoded = f"0x{found.number:X}"
    else:
        decoded = ctypes.string_at(found.text, found.text_size).decode("utf-8", "replace")
    unit = _c.quorlin_unit_text(found.unit).decode()
    raw += ctypes.string_at(found.string, found.string_size)
    return Fact(found.key.decode(), found.name.decode(), kind, state, decoded, unit, raw, found.offset, found.size,
                tuple(sources))
