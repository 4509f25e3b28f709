#!/usr/bin/env python3
"""Checks that the row form says what the program says otherwise: facts, check, summary, and the bytes of the tables.

    rows.py PROGRAM WRITE-IMAGES FOLDER

Reads the tests' generated images and, where there are some, images of real machines. FOLDER is for its files.
"""
import csv
import hashlib
import json
import pathlib
import re
import shutil
import subprocess
import sys

PROGRAM, WRITE_IMAGES, FOLDER = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
NULL = object()
OTHERS = ["machines", "strings", "findings", "rejects"]
# What steers a terminal is a blank in CSV.
STEERS = re.compile("[\0-\x1f\x7f-\x9f\u2028-\u202e\u2066-\u2069]")


def run(*arguments, **options):
    return subprocess.run([PROGRAM, *map(str, arguments)], capture_output=True, text=True, **options)


def cells(line):
    """The cells of a line. The csv module of Python 3.11 can't tell an empty cell from an empty text."""
    found, at = [], 0
    while True:
        if line[at:at + 1] == '"':
            end = at + 1
            while line[end] != '"' or line[end + 1:end + 2] == '"':
                end += 1 if line[end] != '"' else 2
            found.append(line[at + 1:end].replace('""', '"'))
            end += 1
        else:
            end = (line + ",").index(",", at)
            found.append(line[at:end] or NULL)
        if end == len(line):
            return found
        assert line[end] == ",", line
        at = end + 1


def dataset(name):
    """Its columns, and its rows by name of column."""
    lines = (FOLDER / "rows" / f"{name}.csv").read_bytes().decode("utf-8").split("\r\n")
    assert lines.pop() == "" and not any("\n" in line for line in lines), name
    columns = cells(lines[0])
    rows = [cells(line) for line in lines[1:]]
    assert all(len(row) == len(columns) for row in rows), name
    assert list(csv.reader(lines)) == [columns] + [["" if cell is NULL else cell for cell in row] for row in rows]
    return columns, [dict(zip(columns, row)) for row in rows]


def text(value):
    return STEERS.sub(" ", value).rstrip(" ")


def flat(fact):
    """A fact of JSON with --full as the row form has it; None if it isn't a value."""
    value = fact.get("value")
    if fact["state"] != "value" and not (fact["state"] == "reserved" and isinstance(value, str)):
        return None
    if isinstance(value, list) and value and isinstance(value[0], dict):
        return [{key: flat(part) for key, part in record.items()} for record in value]
    return value


def cell(fact):
    value = flat(fact)
    if value is None:
        return NULL
    if isinstance(value, list) and not value:
        return ["", "[]"]  # no bit is set, or there is no record; JSON doesn't tell which
    if isinstance(value, list) and isinstance(value[0], dict):
        return value
    return text("; ".join(value) if isinstance(value, list) else str(value))


def is_same(cell, wanted):
    if isinstance(wanted, list):
        return cell in wanted or (cell is not NULL and cell.startswith("[{") and json.loads(cell) == wanted)
    return cell == wanted


def differences(row, wanted):
    return [(key, cell, wanted[key]) for key, cell in row.items() if not is_same(cell, wanted[key])]


def known(value):
    return NULL if value is None or value == "" else text(str(value))


def structures(table):
    """Handle, type and strings of each structure."""
    at = 0
    while at + 4 <= len(table):
        end = at + max(table[at + 1], 4)
        strings = []
        area = end
        while end < len(table) and table[end:end + 2] != b"\0\0":
            end += 1
        if table[area:area + 2] != b"\0\0":
            strings = table[area:end].rstrip(b"\0").split(b"\0") if end > area else []
        yield int.from_bytes(table[at + 2:at + 4], "little"), table[at], strings
        if table[at] == 127:
            return
        at = end + 2


def main():
    shutil.rmtree(FOLDER, ignore_errors=True)
    (FOLDER / "images").mkdir(parents=True)
    subprocess.run([WRITE_IMAGES, FOLDER / "images"], check=True)
    shared = pathlib.Path(__file__).resolve().parents[4] / "shared/tables"
    images = [*sorted((FOLDER / "images").iterdir()), *sorted(shared.glob("*.bin"))]
    (FOLDER / "empty, \"not\" an image.bin").write_bytes(b"")
    rejected = FOLDER / "empty, \"not\" an image.bin"
    names = "".join(f"{image}\n" for image in [*images, rejected])
    result = run("facts", "--rows", FOLDER / "rows", "--image-list", "-", input=names)
    assert result.returncode == 1 and result.stdout == "", result
    assert result.stderr.count("\n") == 1 and "1 of the tables can't be read" in result.stderr, result.stderr

    datasets = {path.stem: dataset(path.stem) for path in (FOLDER / "rows").iterdir()}
    _, schema = datasets.pop("columns")
    listed = {}
    for row in schema:
        listed.setdefault(row["dataset"], []).append(row["column"])
    assert listed == {name: columns for name, (columns, _) in datasets.items()}
    assert list(listed)[:4] == OTHERS and len(listed) == len(OTHERS) + 47
    types = {(row["dataset"], row["column"]): row["type"] for row in schema}
    for name, (_, rows) in datasets.items():
        for column in listed[name]:
            limits = {"BIGINT": (-2**63, 2**63), "UBIGINT": (0, 2**64)}.get(types[name, column])
            for row in rows:
                if limits and row[column] is not NULL:
                    assert limits[0] <= int(row[column]) < limits[1], (name, row)
    rows_of = {name: {} for name in listed}
    for name, (_, rows) in datasets.items():
        for row in rows:
            rows_of[name].setdefault(row.get("record"), []).append(row)
    assert [row["source"] for row in datasets["rejects"][1]] == [str(rejected)]
    assert [row["source"] for row in datasets["machines"][1]] == list(map(str, images))

    for image in images:
        record = str(int.from_bytes(hashlib.sha256(str(image).encode()).digest()[:8], "big") >> 1)
        check_image(image, {name: rows.get(record, []) for name, rows in rows_of.items()}, listed)
    print(f"{len(images)} images")


def check_image(image, rows, columns):
    (machine,) = rows["machines"]
    document = json.loads(run("facts", "--full", "--format", "json", "--image", image).stdout)
    (FOLDER / "dump").unlink(missing_ok=True)
    run("dump", FOLDER / "dump", "--image", image, check=True)
    table = (FOLDER / "dump").read_bytes()[32:]
    assert machine["table_sha256"] == hashlib.sha256(table).hexdigest(), image
    assert machine["bytes"] == str(len(table)) and machine["smbios_version"] == document["smbios"], machine
    assert machine["structures"] == str(len(document["structures"])), machine

    # Facts.
    names = {}
    expected = {}
    for structure in document["structures"]:
        name = re.sub("[^a-z0-9]+", "_", re.sub(r"\([^)]*\)", "", structure["name"]).lower()).strip("_")
        if name not in columns:
            continue
        names[structure["type"]] = name
        row = dict.fromkeys(columns[name], NULL)
        row.update(record=machine["record"], handle=str(structure["handle"]), instance=str(structure["instance"]))
        for key, fact in structure["facts"].items():
            assert key in row, (name, key)
            row[key] = cell(fact)
        expected.setdefault(name, []).append(row)
    assert {structure["type"] for structure in document["structures"]} - set(names) <= set(range(47, 256))
    for name in columns:
        if name in OTHERS:
            continue
        for row, wanted in zip(rows[name], expected.get(name, []), strict=True):
            assert not differences(row, wanted), (image, name, differences(row, wanted))

    # Strings, where no fault of the table makes the walk a matter of judgement.
    if not any(word in image.name for word in ("cut", "short", "broken")):
        wanted = [(str(handle), str(kind), str(number), text(string.decode("utf-8", "replace")))
                  for handle, kind, strings in structures(table) for number, string in enumerate(strings, 1)]
        got = [(row["handle"], row["type"], row["number"], row["string"]) for row in rows["strings"]]
        marks = re.compile("\ufffd+")
        assert [tuple(marks.sub("\ufffd", part) for part in row) for row in got] == \
            [tuple(marks.sub("\ufffd", part) for part in row) for row in wanted], image

    # Findings.
    findings = json.loads(run("check", "--format", "json", "--image", image).stdout)["findings"]
    wanted = sorted((finding["rule"], finding["severity"], str(place.get("handle", "")), str(finding.get("type", "")),
                     text("".join([f"{finding['key']}: " if finding.get("key") else "", finding["what"],
                                   f": {place['found']}" if place["found"] else "",
                                   f"; expected {place['expected']}" if place["expected"] else ""])))
                    for finding in findings for place in finding["places"])
    got = sorted((row["rule"], row["severity"], *("" if row[key] is NULL else row[key] for key in ("handle", "type")),
                  row["message"]) for row in rows["findings"])
    assert got == wanted, (image, set(got) ^ set(wanted))

    # The machine.
    summary = json.loads(run("summary", "--format", "json", "--image", image).stdout)
    check_machine(machine, summary, document)


def check_machine(machine, summary, document):
    system, board, chassis, firmware = (summary[part] for part in ("system", "board", "chassis", "firmware"))
    wanted = {
        "uuid": system["uuid"], "system_serial_number": system["serial_number"],
        "board_serial_number": board["serial_number"], "chassis_serial_number": chassis["serial_number"],
        "system_manufacturer": system["manufacturer"], "system_product": system["product_name"],
        "system_version": system["version"], "system_sku": system["sku_number"], "system_family": system["family"],
        "board_manufacturer": board["manufacturer"], "board_product": board["product"],
        "board_version": board["version"], "chassis_manufacturer": chassis["manufacturer"],
        "chassis_type": chassis["type"], "firmware_vendor": firmware["vendor"],
        "firmware_version": firmware["version"], "firmware_date": firmware["release_date"],
        "firmware_release": firmware["release"],
        "processors": summary["processors"]["used"], "cores": summary["processors"]["cores"],
        "threads": summary["processors"]["threads"], "memory_bytes": summary["memory"]["installed"],
        "memory_modules": summary["memory"]["used"], "memory_slots": summary["memory"]["slots"],
    }
    for column, value in wanted.items():
        assert machine[column] == known(value), (column, machine[column], value)
    for kind, key, column in (1, "uuid", "uuid_state"), (1, "serial_number", "system_serial_number_state"), \
            (3, "serial_number", "chassis_serial_number_state"):
        first = next((structure["facts"] for structure in document["structures"] if structure["type"] == kind), None)
        state = NULL if first is None else first.get(key, {"state": "absent"})["state"]
        assert machine[column] == state, (column, machine[column], state)


main()
