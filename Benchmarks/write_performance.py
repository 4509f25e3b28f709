#!/usr/bin/env python3
"""Writes Docs/Performance.md from what `make bench` measured: write_performance.py FIGURES BENCH-JSON >PAGE

FIGURES is the output of bench.py, BENCH-JSON that of quorlin_bench. Every number of the page comes from the two files.
"""

import json
import os
import pathlib
import platform
import re
import subprocess
import sys
import textwrap


class Figures:
    """The figures of bench.py: figures["start", "instructions"]."""

    def __init__(self, path):
        lines = [line.split() for line in pathlib.Path(path).read_text().splitlines()]
        self.numbers = {(name, unit): float(number) for name, unit, number in lines}

    def __getitem__(self, key):
        return self.numbers[key]

    def instructions(self, name):
        return self.numbers[name, "instructions"]

    def names(self, group):
        """What comes after `group/` in names, in the order of the file."""
        return list(dict.fromkeys(name.split("/", 1)[1] for name, _ in self.numbers if name.startswith(group + "/")))

    def range_of(self, group, unit):
        values = [number for (name, its_unit), number in self.numbers.items()
                  if name.startswith(group + "/") and its_unit == unit]
        return min(values), max(values)


def best_runs(path):
    """The best repetition of each benchmark by name, its time in nanoseconds, and what was known of the machine."""
    content = json.loads(pathlib.Path(path).read_text())
    units = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    best = {}
    for run in content["benchmarks"]:
        if run.get("run_type") == "aggregate":
            continue
        run["nanoseconds"] = run["cpu_time"] * units[run["time_unit"]]
        name = run["run_name"].removesuffix("/manual_time")
        if name not in best or run["nanoseconds"] < best[name]["nanoseconds"]:
            best[name] = run
    return best, content["context"]


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout.strip()


def value_in(path, key):
    """The value of the first line `KEY: VALUE` or `KEY=VALUE` of a file."""
    found = re.search(rf"^{key}\s*[:=]\s*\"?([^\"\n]*)", pathlib.Path(path).read_text(), re.MULTILINE)
    return found.group(1) if found else "unknown"


def commit():
    changes = output("git", "status", "--porcelain", "--untracked-files=no")
    # The page itself is written by every run.
    changes = [line for line in changes.splitlines() if not line.endswith("Docs/Performance.md")]
    return output("git", "rev-parse", "--short", "HEAD") + (", with changes that aren't committed" if changes else "")


def machine(context):
    caches = [f"L{cache['level']} {cache['size'] // 1024} KiB" for cache in context["caches"]
              if cache["type"] != "Instruction"]
    return (
        f"{context['date'][:10]}, commit {commit()}. Machine: {value_in('/proc/cpuinfo', 'model name')}, "
        f"{os.cpu_count()} cores, {context['mhz_per_cpu'] / 1000:.1f} GHz, {', '.join(caches)}; "
        f"{value_in('/etc/os-release', 'PRETTY_NAME')}, Linux {platform.release()}, "
        f"glibc {platform.libc_ver()[1]}, {output('c++', '--version').splitlines()[0]}. "
        f"The load was {context['load_avg'][0]:.1f} when the times were taken."
    )


def table(head, rows):
    """A table whose first column is text and whose others are numbers."""
    widths = [max(len(line[column]) for line in [head, *rows]) for column in range(len(head))]

    def line_of(cells):
        return "| " + " | ".join([cells[0].ljust(widths[0]), *map(str.rjust, cells[1:], widths[1:])]) + " |"

    rule = "|" + "-" * (widths[0] + 2) + "|" + "".join("-" * (width + 1) + ":|" for width in widths[1:])
    return "\n".join([line_of(head), rule, *map(line_of, rows)])


def wrapped(text):
    """Wraps the paragraphs at 120 columns; headings, tables and code stay as they are."""
    blocks = (block if block[0] in "#| " else textwrap.fill(block, 120, break_on_hyphens=False)
              for block in re.split(r"\n{2,}", text.strip("\n")))
    return "\n\n".join(blocks) + "\n"


def millions(number):
    return f"{number / 1e6:.2f}"


def mebibytes(kilobytes):
    return f"{kilobytes / 1024:.1f}"


def images_table(figures):
    rows = []
    for image in figures.names("text"):
        lines, text, peer = (figures.instructions(f"{group}/{image}") for group in ("lines", "text", "peer"))
        rows.append([image, *map(millions, (lines, text, peer)), f"{lines / peer:.2f}", f"{text / peer:.2f}"])
    return table(["image", "lines", "text", "peer", "lines / peer", "text / peer"], rows)


def commands_table(figures, image):
    peer = figures.instructions(f"peer/{image}")
    peers = {name: figures.instructions(f"command-peer/{name}") for name in figures.names("command-peer")}
    words = {
        "csv": "`--format csv`",
        "json": "`--format json`",
        "types": "`types`",
        "facts": "`facts --format json`",
        "check": "`check`",
        "diff": "`diff` with a copy that has another serial number",
        "serial": "`-s system-serial-number`",
        "type17": "`--type 17`",
    }
    rows = [["`--version`", millions(figures.instructions("start")), "", ""]]
    for name, word in words.items():
        ours, its = figures.instructions(f"command/{name}"), peers.get(name, peer)
        rows.append([word, millions(ours), millions(its), f"{ours / its:.2f}"])
    return table(["command", "quorlin", "peer", "ratio"], rows)


def difference(figures, name, first="1", second="2"):
    return figures.instructions(f"{name}/{second}") - figures.instructions(f"{name}/{first}")


def openings(figures):
    rows = []
    for how, words, made in (("c", "`quorlin_open_file`, `quorlin_close`", f"{figures['open-c', 'calls']:.0f}"),
                             ("package", "`Initialize`, `UnInitialize`", "")):
        time = figures[f"open-{how}", "nanoseconds"] / 1000
        rows.append([words, made, f"{difference(figures, f'open-{how}'):,.0f}", f"{time:.1f}"])
    return table(["a further", "system calls", "instructions", "microseconds"], rows)


def walks(figures):
    """The worst ratios of the C interface to the package, over all images."""
    texts = []
    for what, words, other in (
        ("walk", "A walk over all items by `quorlin_next`", "one by the package's `GetNextItem`"),
        ("use", "Opening, walking and closing", "the same by a package"),
    ):
        ratios = []
        for image in figures.names("peer"):
            ours, package = (difference(figures, f"{what}-{how}/{image}") for how in ("c", "package"))
            ratios.append((ours / package, image, ours, package))
        ratio, image, ours, package = max(ratios)
        texts.append(f"{words} takes at most {ratio:.2f} times the instructions of {other}, over all images ({image}: "
                     f"{ours:,.0f} against {package:,.0f}).")
    return " ".join(texts)


def fleets(figures):
    peers = [figures.instructions(f"peer/{image}") for image in figures.names("peer")]
    words = {"ndjson": "`--format ndjson`", "facts": "`facts --format ndjson`", "rows": "`facts --rows`",
             "summary": "`summary --format ndjson`"}
    rows = [[word, f"{figures.instructions(f'fleet/{name}') / 1e9:.3f}", f"{figures[f'fleet/{name}', 'seconds']:.2f}",
             mebibytes(figures[f"fleet/{name}", "kilobytes"])] for name, word in words.items()]
    rows.append(["peer, a process for each image", f"{sum(peers) / len(peers) / 1e6:.3f}", "", ""])
    return table(["command", "million instructions an image", "seconds", "MiB"], rows)


def hostile(figures):
    rows = []
    for count in figures.names("hostile"):
        ours, peer = (figures.instructions(f"{group}/{count}") / int(count) for group in ("hostile", "hostile-peer"))
        rows.append([f"{int(count):,}", f"{ours:,.0f}", f"{peer:,.0f}", f"{ours / peer:.2f}"])
    return table(["structures", "quorlin", "peer", "ratio"], rows)


def worst(figures):
    kinds = ("usual", "small", "bare", "texts")
    commands = list(dict.fromkeys(name.split("/")[1] for name in figures.names("4M")))
    cell = lambda kind, command: (f"{figures[f'4M/{kind}/{command}', 'seconds']:.2f} / "
                                  f"{mebibytes(figures[f'4M/{kind}/{command}', 'kilobytes'])}")
    return table(["command", "the sample's structures", "small structures", "processors without a field",
                  "a vendor's short texts"],
                 [[f"`{command}`"] + [cell(kind, command) for kind in kinds] for command in commands])


def small_tables(figures):
    rows = []
    for kind, words in (("usual", "the sample's structures"), ("small", "small structures of all types, in turn"),
                        ("bare", "processors without a field"), ("texts", "a vendor's short texts")):
        least, most = figures.range_of(f"64K/{kind}", "kilobytes")
        rows.append([words, f"{mebibytes(least)} – {mebibytes(most)}"])
    return table(["table of 64 KiB", "peak in MiB"], rows)


def calls(figures):
    words = {"cpuid": "`quorlin hw cpuid 0`", "pci": "`quorlin hw pci 0000:00:00.0 2 5`",
             "image": f"`quorlin --image {figures.names('text')[-1]}.bin`", "machine": "`quorlin`, of this machine"}
    return table(["run", "calls"], [[word, f"{figures[f'calls/{name}', 'calls']:.0f}"] for name, word in words.items()])


def formats(runs):
    images = list(dict.fromkeys(name.split("/")[2] for name in runs if name.startswith("BM_Format/")))
    names = list(dict.fromkeys(name.split("/")[1] for name in runs if name.startswith("BM_Format/")))
    order = [name for name in ("lines", "text", "json", "ndjson", "csv") if name in names]
    return table(["format"] + images, [[name] + [f"{runs[f'BM_Format/{name}/{image}']['nanoseconds'] / 1000:.0f}"
                                                 for image in images] for name in order])


def decoding(runs, images):
    rows = []
    names = {f"BM_Decode/{image}": image for image in images} | {"BM_DecodeSample": "the embedded sample"}
    for name, words in names.items():
        run = runs[name]
        rows.append([words, f"{run['nanoseconds'] / 1000:.0f}", millions(run["structures"]), millions(run["items"]),
                     f"{run['bytes_an_item']:.0f}", f"{run['allocations_an_item']:.2f}"])
    return table(["image", "microseconds", "million structures / s", "million items / s", "bytes an item",
                  "allocations an item"], rows)


def containers(runs):
    """Nanoseconds of each operation, and the ratio to the standard library's."""
    kinds = (
        ("plain list", "ClPlainList, ClStandardPlainList"),
        ("sorted list", "ClSortedList, ClStandardSortedList"),
        ("red-black tree", "ClRedBlackTree, ClMultimap"),
        ("AVL tree", "ClAVLTree, ClMultimap"),
    )

    def table_of(work, parts, rows):
        run_of = lambda classes: runs[f"BM_Container<{work}, {classes}>/1000"]
        cell = lambda run, part: f"{run[part + '_ns']:,.0f} / {run[part + '_ratio']:.1f}"
        head = ["kind", *(part.replace("find", "search") for part in parts)]
        return table(head, [[words, *(cell(run_of(classes), part) for part in parts)] for words, classes in rows])

    return "\n\n".join([
        table_of("Search_t", ("insert", "find", "delete", "read"), kinds),
        "Lists as stacks, whose entries come in rising order:",
        table_of("Stack_t", ("push", "pop", "read"), kinds[:2]),
    ])


def smaller_figures(runs):
    reads = [run["nanoseconds"] / 1000 for name, run in runs.items() if name.startswith("BM_ReadImage/")]
    sweeps = [f"{runs[f'BM_SweepStructures/{count}']['nanoseconds'] / count:.0f} ns at {count:,}"
              for count in (1000, 10000, 65535)]
    texts = [
        "Among many small structures of all types, one with ten items, read one by one, takes "
        f"{', '.join(sweeps)} structures.",
        f"A trace call that is off takes {runs['TraceNullHandle']['nanoseconds']:.1f} ns without a handle and "
        f"{runs['TraceSilentHandle']['nanoseconds']:.1f} ns with a silent one. `GetItemValue` makes "
        f"{runs['BM_GetItemValue']['allocations_an_item']:.3f} allocations an item; the caller's strings need "
        f"{runs['BM_GetItemValue']['needed_an_item']:.3f}.",
    ]
    if reads:
        texts.append(f"Reading an image file takes {min(reads):.1f} to {max(reads):.1f} microseconds.")
    return " ".join(texts)


def limits(figures, runs, image):
    ours, limit = figures.instructions(f"lines/{image}"), figures.instructions("limit")
    time = lambda name: runs[name]["nanoseconds"] / 1000
    return (
        "No such program can avoid reading the table's bytes once and writing the output's bytes once. "
        f"`quorlin_limit` does just that, linked as `quorlin` is: {millions(limit)} million instructions for {image} "
        f"as lines, against {millions(ours)}. This machine copies 64 KiB within the cache in "
        f"{time('BM_LimitCopy'):.1f} microseconds, writes them into /dev/null in {time('BM_LimitWriteNull'):.1f} and "
        f"into a file in memory in {time('BM_LimitWriteFile'):.1f}, opens, reads and closes a file of 23 KB in "
        f"{time('BM_LimitReadFile/23076'):.1f} and one of 4 KB in {time('BM_LimitReadFile/4096'):.1f}, and allocates "
        f"and frees 64 bytes in {1000 * time('BM_LimitAllocate'):.1f} ns."
    )


def page(figures, runs, context):
    images = figures.names("text")
    first = images[0]
    return f"""# Performance

`make bench` writes this page by `Benchmarks/write_performance.py`. Every number comes from one run: {machine(context)}

Instructions are those of a whole process, from its start on, with an empty environment, counted by callgrind; other
programs don't change them. The peer is Debian's `dmidecode --from-dump` on the same image, counted in the same run.
Times are processor times, the best of several repetitions, and grow when other programs run. The images are
{figures["images", "count"]:.0f} files in the folder that `QUORLIN_BENCH_IMAGES` names, or else in `../shared/tables`;
without these they are generated.

## Whole runs

Millions of instructions of `quorlin --image FILE --format lines`, of `--format text`, and of the peer:

{images_table(figures)}

Of {first}; where the peer has no such command, its whole text stands for it:

{commands_table(figures, first)}

## The C interface

A handle of {images[-1]}, opened and closed again in one process, and a package of the same image:

{openings(figures)}

{walks(figures)}

## Fleets

Many images in one process. The instructions are a thousandth of a run over 1,000 images, the list repeated; seconds and
memory are those of a run over 10,000 images on one core:

{fleets(figures)}

## Hostile tables

Instructions a structure of tables of small structures of the types 3 to 41, in turn, as lines:

{hostile(figures)}

Tables of 4 MiB, the most that is read: seconds on one core / peak memory in MiB:

{worst(figures)}

The program shows a structure, forgets its items, and goes on to the next one. Only the store grows with the number of
structures. From the cheapest format to the dearest:

{small_tables(figures)}

## System calls

Of a whole run, of which 14 come before `main`:

{calls(figures)}

## Formats

Microseconds in one process, into `/dev/null`:

{formats(runs)}

## Decoding

A package starts, sweeps, and ends. The allocations are those of `malloc` and of `operator new`:

{decoding(runs, images)}

{smaller_figures(runs)}

## Containers

Nanoseconds an operation, and the ratio to the same work of the standard library's container in the same run, with the
same pointers, compare function and order of keys, locked by a `std::mutex`: `std::list`, kept in order for the sorted
list, and `std::multimap`. The container's own lock is recursive. A search is `UpdateNode` of an entry by itself: sorted
lists and trees delete and insert, where the standard's containers search once. A read is by rising index, compared with
an iterator. With 1,000 entries:

{containers(runs)}

`build/bench/bin/quorlin_bench --benchmark_filter=1000000` measures them with a million entries, which takes minutes.

## How far from the limit

{limits(figures, runs, first)}

## To compare

    make bench                           # build/bench: bench.json, figures.txt, and this page
    Benchmarks/compare.py before/bench.json build/bench/bench.json
    Benchmarks/compare.py before/figures.txt build/bench/figures.txt
    make guard                           # ten runs against Benchmarks/ratios.txt

`compare.py` fails when a figure is 10 % worse or missing. `make guard` fails when a run's instructions, divided by the
peer's, are more than 3 % worse than the committed ratio.
"""


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    runs, context = best_runs(sys.argv[2])
    sys.stdout.write(wrapped(page(Figures(sys.argv[1]), runs, context)))


if __name__ == "__main__":
    main()
