#!/usr/bin/env python3
"""Compares what two builds of the program write, show on a terminal, say and return, for the sample and for images.

    compare-programs.py FIRST SECOND IMAGE...

FIRST and SECOND are programs, with words before them if something else starts them: "wine quorlin.exe". FIRST runs on
this machine. Each run has a folder of its own, whose files are compared as well.
"""
import concurrent.futures
import errno
import hashlib
import json
import os
import pathlib
import pty
import subprocess
import sys
import tempfile


def lines(text):
    return text.strip().split("\n")


# A run for each image, named IMAGE, and for the sample.
EACH = lines("""
--image IMAGE
--image IMAGE --format lines
--image IMAGE --format json
--image IMAGE --format ndjson
--image IMAGE --format csv
types --image IMAGE
find serial --image IMAGE
get 1 Manufacturer --image IMAGE
raw --image IMAGE
check --image IMAGE
report - --image IMAGE
--image IMAGE --verbose --recover --type 0-17
--image IMAGE --format lines --signature 506C0
--image IMAGE --string system-serial-number
summary --image IMAGE
summary --image IMAGE --format json
types --image IMAGE --format json
facts --image IMAGE --where --absent
facts --image IMAGE --full --format json
find a --image IMAGE --format json
get system-uuid --image IMAGE
check --image IMAGE --severity note
check --image IMAGE --severity note --format json
check --image IMAGE --severity note --format sarif
diff BASE --image IMAGE
diff BASE --image IMAGE --format json
redact IMAGE out.bin --key KEY
redact IMAGE - --keep-vendor --key KEY
report out.html --image IMAGE --redact --key KEY
metrics --image IMAGE
dump out.bin --image IMAGE
explain 0-255 --image IMAGE
""")
# The same on a terminal, which texts of firmware must not steer.
EACH_ON_TERMINAL = lines("""
--image IMAGE
--image IMAGE --format lines
--image IMAGE --format csv
--image IMAGE --format json
--image IMAGE --string system-serial-number
summary --image IMAGE
facts --image IMAGE --where
explain 0-255 --image IMAGE
""")
# One run for all images, which LIST names.
ALL = lines("""
--image-list LIST --format ndjson
--image-list LIST --format csv
--image-list LIST --format ndjson --recover --signature 30670 --type 4,13,17,148
summary --image-list LIST --format ndjson
types --image-list LIST --format ndjson
types --image-list LIST --format csv
facts --image-list LIST --full --absent --format ndjson
facts --image-list LIST --absent --format csv
facts --image-list LIST --rows rows
find a --image-list LIST --format ndjson
find a --image-list LIST --format csv
check --image-list LIST --severity note --format ndjson
check --image-list LIST --severity note --format csv
diff BASE --image-list LIST --format ndjson
diff BASE --image-list LIST --ignore serial_number --format csv
""")
COMMANDS = ("show summary types facts find get dump explain raw check diff verify redact report metrics record hw "
            "doctor").split()
# Runs without an image: help, the sample, and the record of a machine.
ONCE = [f"{command} --help" for command in COMMANDS] + lines("""
--version
redact --list
redact --list --format json
--sample --format lines --type 148
--sample --format lines --type 148 --signature 30670
--sample --format lines --type 148 --signature 506C0
--replay RECORD --verbose
summary --replay RECORD --format json
metrics --replay RECORD
verify --replay RECORD
verify --replay RECORD --format json
verify --replay RECORD --image BASE --format csv
hw acpi --replay RECORD
hw cpuid 0 --replay RECORD
hw msr read 0x10 --replay RECORD
hw pci 0:0:0.0 0 256 --replay RECORD
hw port read 0x70 1 --replay RECORD
hw segments --replay RECORD
hw versions --replay RECORD
record again --replay RECORD
""")
# What is refused.
REFUSED = lines("""
nonsense
--nonsense
--sample --type 256
--sample --format nonsense
--sample --signature xyz
--sample --driver
--image missing.bin
--image-list missing.txt --format csv
--replay missing
get nonsense --sample
get 1 Nonsense --sample
find nothing-that-is-there --sample
raw --sample --handle 017
explain 300 --sample
diff KEY KEY
redact KEY out.bin --key missing.bin
check --sample --only QR9999
""")


def absolute(command):
    """The words of a command, with the whole names of its files."""
    return [os.path.abspath(word) if os.path.exists(word) else word for word in command.split()]


def on_terminal(command, folder):
    """Runs a command on a terminal of its own. Returns what it shows and its exit code."""
    own, its = pty.openpty()
    with subprocess.Popen(command, cwd=folder, stdin=its, stdout=its, stderr=its, start_new_session=True,
                          env={**os.environ, "TERM": "xterm"}) as process:
        os.close(its)
        shown = b""
        while True:
            try:
                piece = os.read(own, 1 << 16)
            except OSError as error:  # what Linux gives at a terminal's end
                if error.errno != errno.EIO:
                    raise
                break
            if not piece:
                break
            shown += piece
        os.close(own)
        return shown, process.wait()


def outcome(command, is_terminal):
    """What a command writes and returns: parts by name."""
    with tempfile.TemporaryDirectory() as folder:
        if is_terminal:
            shown, code = on_terminal(command, folder)
            return {"terminal": shown, "exit code": code}
        run = subprocess.run(command, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, check=False)
        files = {str(file.relative_to(folder)): file.read_bytes()
                 for file in pathlib.Path(folder).rglob("*") if file.is_file()}
        return {"output": run.stdout, "errors": run.stderr, "exit code": run.returncode, **files}


def difference(first, second):
    """Where two outcomes differ, or None."""
    for part in sorted(first.keys() | second.keys()):
        ours, theirs = first.get(part), second.get(part)
        if ours == theirs:
            continue
        if not isinstance(ours, bytes) or not isinstance(theirs, bytes):
            return f"{part}: {ours!r:.200} and {theirs!r:.200}"
        at = len(os.path.commonprefix([ours, theirs]))
        return f"{part} at byte {at}: {ours[max(at - 40, 0):at + 40]!r} and {theirs[max(at - 40, 0):at + 40]!r}"
    return None


def make_record(program, folder):
    """Records this machine, with the sample's table if it has none."""
    subprocess.run([*program, "record", folder], capture_output=True, check=True)
    table = folder / "dmi.bin"
    if table.exists():
        return
    subprocess.run([*program, "dump", table, "--sample"], check=True)
    machine = json.loads((folder / "machine.json").read_text(encoding="utf-8"))
    machine["files"].append({"name": table.name, "sha256": hashlib.sha256(table.read_bytes()).hexdigest()})
    (folder / "machine.json").write_text(json.dumps(machine), encoding="utf-8")


def all_runs(images, is_windows):
    """All runs: a line, its image if it has one, and whether a terminal shows it."""
    shown = [] if is_windows else EACH_ON_TERMINAL  # Wine has no terminal of the tests'
    runs = [(line, None, False) for line in ONCE + REFUSED + ALL]
    runs += [(line.replace("--image IMAGE", "--sample"), None, False) for line in EACH if "--image IMAGE" in line]
    runs += [(line, image, False) for image in images for line in EACH]
    return runs + [(line, image, True) for image in images for line in shown]


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    programs = [absolute(command) for command in sys.argv[1:3]]
    images = [os.path.abspath(image) for image in sys.argv[3:]]
    is_windows = programs[1][-1].endswith(".exe")

    with tempfile.TemporaryDirectory() as scratch:
        names = {"BASE": images[0], **{name: os.path.join(scratch, name) for name in ("KEY", "LIST", "RECORD")}}
        pathlib.Path(names["KEY"]).write_bytes(bytes(range(32)))
        pathlib.Path(names["LIST"]).write_text("".join(image + "\n" for image in images), encoding="utf-8")
        make_record(programs[0], pathlib.Path(names["RECORD"]))

        def fault_of(run):
            line, image, is_terminal = run
            words = [image if word == "IMAGE" else names.get(word, word) for word in line.split()]
            first, second = [outcome([*program, *words], is_terminal) for program in programs]
            found = difference(first, second)
            # Some commands exit with 1 to say no; more is an error.
            if found is None and first["exit code"] not in (0, 1) and line not in REFUSED:
                found = f"exit code {first['exit code']} from both"
            return found and f"quorlin {' '.join(words)}: {found}"

        runs = all_runs(images, is_windows)
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            faults = [fault for fault in pool.map(fault_of, runs) if fault]
    for fault in faults:
        print("FAILED:", fault, file=sys.stderr)
    print(f"{len(runs) - len(faults)} of {len(runs)} runs are the same from both programs")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
