#!/usr/bin/env python3
"""Compares two files of results: compare.py BEFORE AFTER [LIMIT]

Prints how each figure has changed. Fails if one has grown by LIMIT percent (default 10) or more, or is missing. A file
comes from quorlin_bench --benchmark_out=FILE --benchmark_out_format=json, or from bench.py: lines with a name, a unit
and a number. The best of several repetitions counts, as other load on the machine can only add time.
"""

import json
import sys

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
COUNTERS = ("allocations_an_item", "bytes_an_item")


def figures(path):
    """The figures in a file by name. Less is better for all of them."""
    with open(path, encoding="utf-8") as file:
        text = file.read()
    if not text.startswith("{"):
        lines = [line.split() for line in text.splitlines()]
        return {f"{name} {unit}": float(number) for name, unit, number in lines}
    found = {}
    for run in json.loads(text)["benchmarks"]:
        if run.get("run_type") == "aggregate" or "error_message" in run:
            continue
        name = run["run_name"]
        # Processor time, unless the benchmark measures a part of its work itself.
        time = run["real_time" if name.endswith("/manual_time") else "cpu_time"]
        values = {f"{name} ns": time * NANOSECONDS[run["time_unit"]]}
        values |= {f"{name} {counter}": run[counter] for counter in COUNTERS if counter in run}
        found |= {key: min(value, found.get(key, value)) for key, value in values.items()}
    return found


def main(arguments):
    if len(arguments) not in (2, 3):
        sys.exit(__doc__)
    before, after = figures(arguments[0]), figures(arguments[1])
    limit = float(arguments[2]) if len(arguments) == 3 else 10.0
    lost = 0
    for name, old in before.items():
        if name not in after:
            print(f"{name:80} gone")
            lost += 1
            continue
        new = after[name]
        change = 100 * (new - old) / old if old else 100.0 * (new > old)
        is_lost = change >= limit
        verdict = "  more than allowed" if is_lost else ""
        lost += is_lost
        print(f"{name:80} {old:14.4g} {new:14.4g} {change:+7.1f} %{verdict}")
    for name in sorted(after.keys() - before.keys()):
        print(f"{name:80} new")
    if not before:
        sys.exit("no figures in " + arguments[0])
    return 1 if lost else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
