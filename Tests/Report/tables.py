"""Tables and records whose texts try to become markup, for the tests of the page."""

import hashlib
import json
import struct

# The payloads set this global, or add an element with this name.
MARK = "hostile"

PAYLOADS = [
    f"<script>window.{MARK}=1</script>",
    f'"><img src=x onerror="window.{MARK}=1">',
    f"'><svg onload=window.{MARK}=1>",
    f"javascript:window.{MARK}=1",
    f"</title></style></textarea><{MARK}>",
    f"--><!--<iframe srcdoc='<script>parent.{MARK}=1</script>'>",
    f"x onmouseover=window.{MARK}=1 tabindex=1 autofocus onfocus=window.{MARK}=1",
    "&lt;&#60;&quot;&amp;&nbsp;",
    "\u202Eright to left\u202C \u2066isolated\u2069 \u2028lines\u2029",
    "\x01\x07\x08\t\n\r\x1B[31m\x7F\u0085\u009Fcontrols",
    "{{=style}}{{Summary}}%1%2",
]


def payload(number):
    return PAYLOADS[number % len(PAYLOADS)] + f" {number}"


def structures(table):
    """The formatted area and the strings of each structure."""
    at = 0
    while at + 4 <= len(table):
        size = table[at + 1]
        end = table.index(b"\0\0", at + size)
        yield table[at : at + size], [text for text in table[at + size : end].split(b"\0") if text]
        at = end + 2
        if table[at - end - 2] == 127:
            return


def join(formatted, strings):
    return formatted + (b"".join(text + b"\0" for text in strings) or b"\0") + b"\0"


def dump(table, version=(3, 4)):
    """As quorlin dump writes it."""
    head = bytearray(struct.pack("<5sBBBBBBBIQ", b"_SM3_", 0, 0x18, *version, 0, 1, 0, len(table), 0x20))
    head[5] = -sum(head) & 0xFF
    return bytes(head).ljust(0x20, b"\0") + table


def hostile_sample(sample):
    """The sample's table with a payload in place of each string, and bytes that are no UTF-8 in some."""
    number = 0
    table = b""
    for formatted, strings in structures(sample):
        texts = []
        for _ in strings:
            texts.append(payload(number).encode() + (b"\xFF\xC0" if number % 7 == 0 else b""))
            number += 1
        table += join(formatted, texts)
    return table


def all_texts(types=range(127)):
    """A structure of each type, whose bytes are 1: each string number in it is that of a payload."""
    table = b""
    for number in types:
        table += join(struct.pack("<BBH", number, 0x60, number) + b"\1" * 0x5C, [payload(number).encode()])
    # A module, a processor and slots, which the maps draw.
    table += join(struct.pack("<BBHBBBIHH", 16, 0x0F, 0x300, 3, 3, 3, 1 << 24, 0xFFFE, len(PAYLOADS)), [])
    for number in range(len(PAYLOADS)):
        texts = [payload(1000 + number).encode()] * 7
        table += join(struct.pack("<BBHHHHHHBBBBBHHBBBB", 17, 0x1B, 0x400 + number, 0x300, 0xFFFE, 64, 64,
                                  64 + number % 2, 9, 0, 1, 2, 26, 0x80, 3200, 3, 4, 5, 6), texts)
        processor = bytearray(struct.pack("<BBH", 4, 0x2A, 0x500 + number) + bytes(0x26))
        processor[4], processor[5], processor[7], processor[0x10], processor[0x18] = 1, 3, 2, 3, 0x41
        processor[0x23:0x26] = 4, 4, 8
        table += join(bytes(processor), texts)
        table += join(struct.pack("<BBHBBBBBHBBHBB", 9, 0x11, 0x600 + number, 1, 0xA6, 0x0D, 4, 3, number, 0, 0, 0, 0,
                                  number << 3), texts)
    return table + join(struct.pack("<BBH", 127, 4, 0x7F00), [])


DEVICE = [0x86, 0x80, 0x33, 0x15] + [0] * 5 + [0, 0, 2] + [0] * 52  # a network controller


def write_record(folder, table, reason="no rights", host="host"):
    """A machine with two processors and a device in each place 00:00.0 to 00:1f.0, and nothing else."""
    folder.mkdir()
    processor = ("0x00000000 0x00: eax=0x00000001 ebx=0x756e6547 ecx=0x6c65746e edx=0x49656e69",
                 "0x00000001 0x00: eax=0x000506e3 ebx=0x{:02x}000000 ecx=0x00000000 edx=0x0000001f")
    rows = "".join(f"{at:02x}: " + " ".join(f"{byte:02x}" for byte in DEVICE[at : at + 16]) + "\n"
                   for at in range(0, 64, 16))
    files = {
        "dmi.bin": dump(table),
        "cpuid.txt": "".join(f"CPU {number}:\n" + "".join(f"   {line.format(number)}\n" for line in processor)
                             for number in range(2)).encode(),
        "pci.txt": "".join(f"0000:00:{device:02x}.0 0200: 8086:1533\n{rows}\n" for device in range(32)).encode(),
    }
    for name, data in files.items():
        (folder / name).write_bytes(data)
    machine = {
        "form": "quorlin record", "version": 1, "redacted": False, "system": host, "kernel": host, "host": host,
        "firmware": "UEFI", "processors": 2, "memory": 1 << 30, "packages": None, "cores": None, "threads": None,
        "base_mhz": None, "max_mhz": None, "tpm": None, "usable_memory": None, "memory_map": [],
        "firmware_resources": [], "network_addresses": [], "versions": [], "pci_segments": [0], "pci_extended": False,
        "acpi_left_out": [],
        "files": [{"name": name, "sha256": hashlib.sha256(data).hexdigest()} for name, data in files.items()],
        "unread": [{"what": "ACPI tables", "why": reason}, {"what": "TPM", "why": reason}],
    }
    (folder / "machine.json").write_text(json.dumps(machine))
    return folder
