#!/usr/bin/env python3
"""Measures whole runs of the program, and of dmidecode on the same images: bench.py BIN IMAGES

BIN is a folder with quorlin, quorlin_walk and quorlin_limit; IMAGES is a folder with table images. Prints a line for
each figure, "NAME UNIT NUMBER", for write_performance.py and compare.py. Instructions are those of a whole process
with an empty environment, counted by callgrind. Fails if a run fails, or makes more system calls than it may.
"""

import concurrent.futures
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile

# Images of which most is shown, of real machines or generated. The first has a serial number.
SHOWN = (
    "vmware-workstation-17",
    "supermicro-x10ddw-i",
    "dell-poweredge-6450",
    "gigabyte-b760m-ds3h-gen5",
    "kvm-qemu-old",
)
SHOWN_OF_GENERATED = ("newest", "odd-strings", "repeated-handles", "no-end", "old-laptop")
DMIDECODE = "/usr/sbin/dmidecode"
FLEET, COUNTED = 10_000, 1_000  # images of a fleet, and of those whose instructions are counted
MIB = 1 << 20
END = struct.pack("<BBHH", 127, 4, 0xFFFF, 0)  # the structure that ends a table

# Counting.


def checked(command, allowed=(0,), **options):
    """Runs a command, and returns the finished run. An exit code that isn't allowed ends the bench."""
    command = [str(word) for word in command]
    run = subprocess.run(command, capture_output=True, check=False, **options)
    if run.returncode not in allowed:
        sys.exit(f"{' '.join(command)} ended with {run.returncode}: {run.stderr.decode(errors='replace')}")
    return run


def codes_of(command):
    """The exit codes of a run that did its work. check and diff have another one for what they find."""
    return (0, 1) if str(command[1]) in ("check", "diff") else (0,)


def instructions(command):
    callgrind = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null"]
    run = checked([*callgrind, *command], codes_of(command), env={})
    return int(re.search(rb"Collected : (\d+)", run.stderr).group(1))


def system_calls(command):
    with tempfile.NamedTemporaryFile() as log:
        checked(["strace", "-f", "-o", log.name, *command], allowed=(0, 1))  # 1: this machine has no table
        return sum(b"(" in line for line in log)


def cost(command):
    """Seconds of processor time on one core, and the peak memory in KiB."""
    with tempfile.NamedTemporaryFile() as report:
        checked(["taskset", "-c", "0", "/usr/bin/time", "--quiet", "-f", "%U %S %M", "-o", report.name, *command],
                codes_of(command))
        user, system, peak = report.read().split()
        return float(user) + float(system), int(peak)


# Tables.


def structures_of(table):
    at = 0
    while at < len(table) and table[at] != 127:
        end = table.index(b"\0\0", at + table[at + 1]) + 2
        yield table[at:end]
        at = end


def small(count):
    """Small structures of the types 3 to 41, in turn."""
    return b"".join(struct.pack("<BBHI", 3 + place % 39, 8, place % 65536, 1) + b"a\0\0" for place in range(count))


def worst_tables(program, work, most):
    """Tables of at most `most` bytes: the sample's structures, small ones, processors without a field, which show all
    their items nevertheless, and one vendor's structure of short texts, all of which need a pseudonym."""
    checked([program, "dump", "--sample", work / f"sample-{most}"])
    sample = list(structures_of((work / f"sample-{most}").read_bytes()[32:]))
    usual, place = bytearray(), 0
    while len(usual) + len(sample[place % len(sample)]) <= most:
        usual += sample[place % len(sample)]
        place += 1
    bare = b"".join(struct.pack("<BBHH", 4, 4, place % 65536, 0) for place in range(most // 6))
    texts = struct.pack("<BBHB", 200, 5, 0, 0) + b"".join(b"%05x\0" % place for place in range(most // 6 - 1)) + b"\0"
    return {"usual": bytes(usual), "small": small(most // 11), "bare": bare, "texts": texts}


def write_dump(path, table):
    """Writes a dump with an entry point of 64 bits."""
    table += END
    entry = bytearray(struct.pack("<5sBBBBBBBIQ", b"_SM3_", 0, 24, 3, 9, 0, 1, 0, len(table), 32))
    entry[5] = -sum(entry) % 256
    path.write_bytes(bytes(entry).ljust(32, b"\0") + table)
    return path


def with_another_serial(image, serial, copy):
    """Writes a copy of an image in which the first such serial number ends in another character."""
    dump = image.read_bytes()
    at = dump.index(serial) + len(serial) - 1
    copy.write_bytes(dump[:at] + bytes([dump[at] ^ 1]) + dump[at + 1:])
    return copy


class Bench:
    def __init__(self, binaries, images, work):
        self.program, self.walk, self.limit = (binaries / name for name in ("quorlin", "quorlin_walk", "quorlin_limit"))
        self.work = work
        is_table = lambda image: checked([self.program, "types", "--image", image], (0, 1)).returncode == 0
        self.images = [image for image in images if is_table(image)]
        named = {image.stem: image for image in self.images}
        self.shown = [named[name] for name in (SHOWN if SHOWN[0] in named else SHOWN_OF_GENERATED) if name in named]
        self.counts = {}  # commands by name

    def say(self, name, unit, number):
        print(name, unit, number, flush=True)

    def count(self, name, *command):
        self.counts[name] = command

    def say_counts(self):
        """Counts the instructions of what was asked for, several runs at a time: other load doesn't change them."""
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for name, number in zip(self.counts, pool.map(instructions, self.counts.values())):
                self.say(name, "instructions", number)

    def ask_for_commands(self):
        self.count("start", self.program, "--version")
        self.count("sample/lines", self.program, "--sample", "--format", "lines")
        lines = checked([self.program, "--format", "lines", self.shown[0]]).stdout
        self.count("limit", self.limit, self.shown[0], len(lines))
        for image in self.shown:
            for form in ("lines", "text"):
                self.count(f"{form}/{image.stem}", self.program, "--image", image, "--format", form)
        for image in self.images:
            self.count(f"peer/{image.stem}", DMIDECODE, "--from-dump", image)
        first = self.shown[0]
        for form in ("csv", "json"):
            self.count(f"command/{form}", self.program, "--image", first, "--format", form)
        self.count("command/types", self.program, "types", "--image", first)
        self.count("command/facts", self.program, "facts", "--format", "json", "--image", first)
        self.count("command/check", self.program, "check", "--image", first)
        serial = checked([self.program, "get", "system-serial-number", "--image", first]).stdout.strip()
        self.count("command/diff", self.program, "diff", first,
                   with_another_serial(first, serial, self.work / "other.bin"))
        for name, option, word in (("serial", "-s", "system-serial-number"), ("type17", "-t", "17")):
            self.count(f"command/{name}", self.program, "--image", first, option, word)
            self.count(f"command-peer/{name}", DMIDECODE, "--from-dump", first, option, word)

    def ask_for_walks(self):
        """Two runs for each figure, whose difference is what one walk, one use or one opening takes."""
        for image in self.images:
            # A package walks once only.
            self.count(f"walk-c/{image.stem}/1", self.walk, "c", image, 1, 1)
            self.count(f"walk-c/{image.stem}/2", self.walk, "c", image, 1, 2)
            self.count(f"walk-package/{image.stem}/1", self.walk, "package", image, 1, 0)
            self.count(f"walk-package/{image.stem}/2", self.walk, "package", image, 1, 1)
        for how in ("c", "package"):
            for openings in (1, 2):
                for image in self.images:
                    self.count(f"use-{how}/{image.stem}/{openings}", self.walk, how, image, openings, 1)
                self.count(f"open-{how}/{openings}", self.walk, how, self.shown[-1], openings, 0)

    def measure_openings(self):
        image = self.shown[-1]
        calls = [system_calls([self.walk, "c", image, openings, 0]) for openings in (1, 2)]
        self.say("open-c", "calls", calls[1] - calls[0])
        for how in ("c", "package"):
            times = [float(checked([self.walk, how, image, "20000", "0"]).stdout) for _ in range(5)]
            self.say(f"open-{how}", "nanoseconds", min(times))

    def ask_for_fleets(self):
        """Returns the runs of a whole fleet by name."""
        runs = {}
        for images in (COUNTED, FLEET):
            fleet = self.work / f"fleet-{images}"
            fleet.write_text("".join(f"{self.images[place % len(self.images)]}\n" for place in range(images)))
            for name, command in (
                ("ndjson", ["--format", "ndjson"]),
                ("facts", ["facts", "--format", "ndjson"]),
                ("rows", ["facts", "--rows", self.work / f"rows-{images}"]),
                ("summary", ["summary", "--format", "ndjson"]),
            ):
                runs[name, images] = [self.program, *command, "--image-list", fleet]
        for (name, images), command in runs.items():
            if images == COUNTED:
                self.count(f"fleet/{name}", *command)
        return {name: command for (name, images), command in runs.items() if images == FLEET}

    def ask_for_hostile(self):
        for structures in (1_000, 10_000, 65_535):
            dump = write_dump(self.work / f"small-{structures}", small(structures))
            self.count(f"hostile/{structures}", self.program, "--image", dump, "--format", "lines")
            self.count(f"hostile-peer/{structures}", DMIDECODE, "--from-dump", dump)

    def measure(self, name, command):
        seconds, peak = cost(command)
        self.say(name, "seconds", round(seconds, 3))
        self.say(name, "kilobytes", peak)

    def measure_worst(self):
        for kind, table in worst_tables(self.program, self.work, 65_535 - len(END)).items():
            dump = write_dump(self.work / f"64K-{kind}", table)
            for form in ("lines", "text", "json", "csv"):
                self.say(f"64K/{kind}/{form}", "kilobytes", cost([self.program, "--image", dump, "--format", form])[1])
        for kind, table in worst_tables(self.program, self.work, 4 * MIB - len(END)).items():
            dump = write_dump(self.work / f"4M-{kind}", table)
            other = write_dump(self.work / f"4M-{kind}-other", table[:-8])
            for name, command in (
                ("lines", ["--image", dump, "--format", "lines"]),
                ("facts", ["facts", "--format", "json", "--image", dump]),
                ("check", ["check", "--image", dump]),
                ("report", ["report", self.work / f"4M-{kind}.html", "--image", dump]),
                ("metrics", ["metrics", "--image", dump]),
                ("summary", ["summary", "--image", dump]),
                ("diff", ["diff", dump, other]),
                ("rows", ["facts", "--rows", self.work / f"4M-{kind}-rows", "--image", dump]),
                ("redact", ["redact", dump, self.work / f"4M-{kind}-redacted"]),
            ):
                self.measure(f"4M/{kind}/{name}", [self.program, *command])

    def measure_calls(self):
        trouble = False
        for name, most, command in (
            ("cpuid", 30, ["hw", "cpuid", "0"]),
            ("pci", 40, ["hw", "pci", "0000:00:00.0", "2", "5"]),
            ("image", 45, ["--image", self.shown[-1]]),
            ("machine", 60, []),
        ):
            calls = system_calls([self.program, *command])
            self.say(f"calls/{name}", "calls", calls)
            if calls > most:
                print(f"calls/{name}: at most {most} are allowed", file=sys.stderr)
                trouble = True
        return trouble


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with tempfile.TemporaryDirectory() as work:
        bench = Bench(pathlib.Path(sys.argv[1]), sorted(pathlib.Path(sys.argv[2]).glob("*.bin")), pathlib.Path(work))
        if not bench.images:
            sys.exit(f"no table images in {sys.argv[2]}")
        bench.say("images", "count", len(bench.images))
        bench.ask_for_commands()
        bench.ask_for_walks()
        bench.ask_for_hostile()
        fleet = bench.ask_for_fleets()
        bench.say_counts()
        bench.measure_openings()
        for name, command in fleet.items():
            bench.measure(f"fleet/{name}", command)
        bench.measure_worst()
        return bench.measure_calls()


if __name__ == "__main__":
    sys.exit(main())
