#!/usr/bin/env python3
"""Compares two files of benchmark results: compare.py BEFORE.json AFTER.json [LIMIT]

Says how the time of each benchmark has changed, and fails when one has lost more than LIMIT percent (10), or is gone.
The files come from quorlin_bench --benchmark_out=FILE --benchmark_out_format=json. With repetitions the medians count.
"""

import json
import sys

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def times(path):
    """The processor time of each benchmark, in nanoseconds."""
    with open(path, encoding="utf-8") as file:
        runs = json.load(file)["benchmarks"]
    medians = [run for run in runs if run.get("aggregate_name") == "median"]
    single = [run for run in runs if run.get("run_type") != "aggregate" and "error_message" not in run]
    return {run["run_name"]: run["cpu_time"] * NANOSECONDS[run["time_unit"]] for run in medians or single}


def main(arguments):
    if len(arguments) not in (2, 3):
        sys.exit(__doc__)
    before, after = times(arguments[0]), times(arguments[1])
    limit = float(arguments[2]) if len(arguments) == 3 else 10.0
    lost = 0
    for name, old in before.items():
        if name not in after:
            print(f"{name:50} gone")
            lost += 1
            continue
        change = 100 * (after[name] - old) / old
        verdict = "  slower than allowed" if change > limit else ""
        lost += change > limit
        print(f"{name:50} {old:14.1f} ns {after[name]:14.1f} ns {change:+7.1f} %{verdict}")
    if not before:
        sys.exit("no benchmarks in " + arguments[0])
    return 1 if lost else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
