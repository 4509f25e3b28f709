#!/usr/bin/env python3
"""Checks that the program, a C program and the Python package give the same facts, and tests the package.

    compare.py PROGRAM LIST-FACTS LIBRARY WRITE-IMAGES

Reads the sample, the tests' generated images, and the images of real machines where there are some.
"""
import gc
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import threading
import unittest

PROGRAM, LIST_FACTS, LIBRARY, WRITE_IMAGES = sys.argv[1:]
ROOT = pathlib.Path(__file__).resolve().parents[2]
os.environ["QUORLIN_LIBRARY"] = LIBRARY
sys.path.insert(0, str(ROOT / "Python"))
import quorlin  # noqa: E402  # finds the library by the variable above


def run(*command):
    return subprocess.run(command, check=True, capture_output=True).stdout


def images(folder):
    sample = folder / "sample.bin"
    run(PROGRAM, "dump", "--sample", str(sample))
    (folder / "generated").mkdir()
    run(WRITE_IMAGES, str(folder / "generated"))
    real = (ROOT.parent / "shared/tables").glob("*.bin")
    return [sample, *sorted((folder / "generated").iterdir()), *sorted(real)]


def plain(value):
    """A value as JSON has it. Python may replace bytes that aren't UTF-8 by fewer marks."""
    if isinstance(value, str):
        return re.sub("\ufffd+", "\ufffd", value)
    return value.hex().upper() if isinstance(value, bytes) else value


def loaded(text):
    return json.loads(re.sub("\ufffd+", "\ufffd", text.decode()))


def as_program(fact):
    """A fact as `quorlin facts --format json --full` shows it."""
    shown = {"state": fact.state}
    if fact.unit:
        shown["unit"] = fact.unit
    if fact.raw:
        shown["raw"] = fact.raw.hex().upper()
    if fact.size:
        shown["offset"], shown["size"] = fact.offset, fact.size
    if fact.sources:
        shown["from"] = list(fact.sources)
    if fact.kind == "list" and fact.decoded is not None:
        shown["value"] = [{key: as_program(part) for key, part in record.items()} for record in fact.decoded]
    elif fact.decoded is not None:
        shown["value"] = plain(fact.decoded)
    return shown


def as_flat(fact):
    """A fact as the program shows it without --full."""
    if fact.kind == "list" and fact.value is not None:
        return [{key: as_flat(part) for key, part in record.items()} for record in fact.value]
    return plain(fact.value)


def c_fields(line):
    structure, record, key, _, state, unit, number, text, offset, size, raw, words, sources = line.split("\t")
    return (int(structure), int(record), key, state, unit, number, text, int(offset), int(size), raw, words, sources)


def as_c(structure, record, fact):
    """What Python tells of a fact in the words of list_facts, but for what it decodes."""
    return (structure, record, fact.key, fact.state, fact.unit, fact.offset, fact.size, fact.raw.hex(),
            "".join(source + "|" for source in fact.sources))


class SameFacts(unittest.TestCase):
    maxDiff = 2000

    def test_program_c_and_python(self):
        with tempfile.TemporaryDirectory() as folder:
            compared = 0
            for image in images(pathlib.Path(folder)):
                with self.subTest(image.name):
                    compared += self.compare(image)
        self.assertGreater(compared, 1000)
        print(f"{compared} facts are the same", file=sys.stderr)

    def compare(self, image):
        table = quorlin.open(image)
        full = loaded(run(PROGRAM, "facts", "--image", image, "--format", "json", "--full", "--absent"))
        flat = loaded(run(PROGRAM, "facts", "--image", image, "--format", "json"))
        self.assertEqual(len(table), len(full["structures"]))
        from_python = []
        for structure, shown, shown_flat in zip(table, full["structures"], flat["structures"]):
            where = f"{image.name}, structure {structure.index}"
            self.assertEqual({key: getattr(structure, key) for key in shown if key != "facts"},
                             {key: shown[key] for key in shown if key != "facts"}, where)
            facts = structure.read_facts(absent=True)
            self.assertEqual({key: as_program(fact) for key, fact in facts.items()}, shown["facts"], where)
            self.assertEqual({key: as_flat(fact) for key, fact in structure.facts.items()}, shown_flat["facts"], where)
            for fact in facts.values():
                from_python.append((structure.index, -1, fact))
                if fact.kind == "list" and fact.decoded is not None:
                    from_python += [(structure.index, number, part)
                                    for number, record in enumerate(fact.decoded) for part in record.values()]
        lines = run(LIST_FACTS, image).decode().splitlines()
        self.assertEqual(len(lines), len(from_python), image.name)
        for line, (structure, record, fact) in zip(lines, from_python):
            fields = c_fields(line)
            number, text, words = fields[5], fields[6], fields[10]
            self.assertEqual(fields[:5] + fields[7:10] + fields[11:], as_c(structure, record, fact), line)
            if fact.decoded is None:
                continue
            if fact.kind in ("number", "handle"):
                self.assertEqual(number, str(fact.decoded), line)
            elif fact.kind == "bits":
                self.assertEqual(words, "".join(word + "|" for word in fact.decoded), line)
            elif fact.kind in ("text", "uuid", "date", "version"):
                self.assertEqual(bytes.fromhex(text).decode("utf-8", "replace"), fact.decoded, line)
        return len(lines)


class SameAnalysis(unittest.TestCase):
    maxDiff = 2000

    def test_program_and_python(self):
        with tempfile.TemporaryDirectory() as folder:
            base = None
            for image in images(pathlib.Path(folder)):
                with self.subTest(image.name):
                    table = quorlin.open(image)
                    self.compare_check(image, table)
                    if base is not None:
                        self.compare_diff(*base, image, table)
                    base = image, table

    def compare_check(self, image, table):
        command = PROGRAM, "check", "--severity", "note", "--image", str(image), "--format", "json"
        shown = loaded(subprocess.run(command, capture_output=True, check=False).stdout)["findings"]
        counts = {}
        for finding in table.check():
            kind = finding.structure.type if finding.structure else None
            group = finding.rule, finding.severity, kind, finding.key or None, finding.what
            counts[group] = counts.get(group, 0) + 1
        members = "rule", "severity", "type", "key", "what"
        self.assertEqual(counts, {tuple(map(group.get, members)): group["count"] for group in shown})

    def compare_diff(self, path_a, a, path_b, b):
        command = PROGRAM, "diff", str(path_a), str(path_b), "--format", "json"
        shown = loaded(subprocess.run(command, capture_output=True, check=False).stdout)["differences"]

        def fact(change):
            members = {"key": change.key, "fact": change.name, "record": change.record, "offset": change.offset,
                       "a": plain(change.a) if change.a else None, "b": plain(change.b) if change.b else None}
            return {key: value for key, value in members.items() if value is not None}

        self.assertEqual([(each.change, each.a and each.a.handle, each.b and each.b.handle, plain(each.place),
                           [fact(change) for change in each.facts]) for each in a.diff(b)],
                         [(each["change"], each.get("handle_a"), each.get("handle_b"), each.get("place", ""),
                           each["facts"]) for each in shown])


class Package(unittest.TestCase):
    TABLE = (b"\x01\x1b\x01\x00\x01\x02\x03\x00" + bytes(range(16)) + b"\x06\x00\x00" +
             b"Halvorsen\x00N\xc3\xb8rd\x00bad \xff\x00\x00" + b"\x7f\x04\xff\xfe\x00\x00")

    def test_analysis(self):
        table = quorlin.from_bytes(self.TABLE, version=(3, 0))
        other = quorlin.from_bytes(self.TABLE.replace(b"Halvorsen", b"Nordvegen"), version=(3, 0))
        change, = table.diff(other)
        self.assertEqual((change.change, change.a.index, change.b.index, change.facts),
                         ("changed", 0, 0, (quorlin.FactChange("manufacturer", "Manufacturer", "Halvorsen", "Nordvegen",
                                                               None, None),)))
        self.assertEqual(table.diff(other, ignore=["manufacturer"]), [])
        self.assertEqual({finding.rule for finding in table.check()}, {"QR0601"})
        redacted = quorlin.from_bytes(table.redacted(bytes(range(16))), version=(3, 0))
        facts = {fact.key for each in table.diff(redacted) for fact in each.facts}
        self.assertEqual(facts, {"uuid"})
        for wrong in (lambda: table.redacted(b"short"), lambda: table.diff(other, ignore=["no_such_key"])):
            with self.assertRaises(quorlin.Error):
                wrong()

    def test_values(self):
        table = quorlin.from_bytes(self.TABLE, version=(2, 4))
        self.assertEqual((table.version, table.form, table.remark, table.bytes), ((2, 4), "table", "", self.TABLE))
        system = table[0]
        self.assertEqual((system.type, system.handle, system.offset, system.bytes), (1, 1, 0, self.TABLE[:-6]))
        facts = system.facts
        self.assertEqual(facts["manufacturer"].value, "Halvorsen")
        self.assertEqual(facts["product_name"].raw, b"\x02N\xc3\xb8rd")
        self.assertEqual(facts["version"].value, "bad \ufffd")
        self.assertEqual((facts["serial_number"].value, facts["serial_number"].state), (None, "none"))
        self.assertEqual(facts["uuid"].value, "00010203-0405-0607-0809-0a0b0c0d0e0f")  # its byte order before 2.6
        self.assertEqual([structure.type for structure in table], [1, 127])
        self.assertEqual([structure.type for structure in table[-1:]], [127])
        self.assertEqual(table.by_handle(0xFEFF).type, 127)
        self.assertIsNone(table.by_handle(2))
        self.assertRaises(IndexError, lambda: table[2])

    def test_structures_keep_their_table(self):
        system = quorlin.from_bytes(self.TABLE)[0]
        gc.collect()
        self.assertEqual(system.facts["manufacturer"].value, "Halvorsen")

    def test_errors(self):
        with self.assertRaisesRegex(quorlin.Error, "No such file"):
            quorlin.open("/no/such/file")
        with self.assertRaisesRegex(quorlin.Error, "not a table"):
            quorlin.from_bytes(b"no table at all")

    def test_recorded_machine(self):
        with tempfile.TemporaryDirectory() as folder:
            place = pathlib.Path(folder)
            files = {"dmi.bin": run(PROGRAM, "dump", "--sample", "-"),
                     "cpuid.txt": b"CPU 0:\n   0x00000001 0x00: eax=0x000506e3 ebx=0x00000000 ecx=0x00000000 "
                                  b"edx=0x00000000\n"}

            def describe(*names):
                listed = [{"name": name, "sha256": hashlib.sha256(files[name]).hexdigest()} for name in names]
                (place / "machine.json").write_text(
                    json.dumps({"form": "quorlin record", "version": 1, "files": listed}))

            for name, content in files.items():
                (place / name).write_bytes(content)
            for names, problem in ((["dmi.bin"], "without CPUID"), (["cpuid.txt"], "the record has no SMBIOS table")):
                describe(*names)
                with self.assertRaisesRegex(quorlin.Error, problem):
                    quorlin.this_machine(replay=place)
            describe(*files)
            table = quorlin.this_machine(replay=place)
            self.assertEqual(table.bytes, quorlin.open(place / "dmi.bin").bytes)
            self.assertEqual(table.form, "this machine")
            (place / "dmi.bin").write_bytes(b"")
            with self.assertRaisesRegex(quorlin.Error, "not the file that machine.json describes"):
                quorlin.this_machine(replay=folder)
            with self.assertRaisesRegex(quorlin.Error, "not a record"):
                quorlin.this_machine(replay="")

    def test_threads(self):
        table = quorlin.from_bytes(self.TABLE)
        expected = table[0].facts
        bad = []

        def read():
            for _ in range(50):
                if table[0].facts != expected or quorlin.from_bytes(self.TABLE)[0].facts != expected:
                    bad.append(1)

        threads = [threading.Thread(target=read) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(bad, [])

    def test_versions_are_the_same(self):
        self.assertIn(f'version = "{quorlin.__version__}"\n', (ROOT / "Python/pyproject.toml").read_text())

    def test_wheel_installs_without_network(self):
        with tempfile.TemporaryDirectory() as folder:
            sys.path.insert(0, str(ROOT / "Python"))
            import build_wheel
            wheel = os.path.join(folder, build_wheel.build_wheel(folder))
            code = "import quorlin; print(quorlin.__file__)"
            environment = {**os.environ, "PYTHONPATH": wheel, "PYTHONDONTWRITEBYTECODE": "1"}
            shown = subprocess.run([sys.executable, "-c", code], env=environment, cwd=folder, check=True,
                                   capture_output=True, text=True).stdout
            self.assertTrue(shown.startswith(wheel), shown)


unittest.main(argv=sys.argv[:1])
