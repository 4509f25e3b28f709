#!/bin/sh
# Measures the peak memory of the program on tables of 64 KB with GNU time:
#   Benchmarks/memory.sh [QUORLIN]
# Prints a line for each run, "NAME kilobytes PEAK", for compare.py. The usual table repeats the sample's structures.
# The small one has small structures of all types. The cut one has processors without fields, which show all their
# items nevertheless: no table of this size gives more.
set -eu
quorlin=${1:-build/bench/bin/quorlin}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$quorlin" dump --sample "$work/sample"
python3 - "$work" <<'PYTHON'
import sys

work, full = sys.argv[1], 65535
small = [bytes([3 + place % 39, 8, place % 256, place // 256, 1, 0, 0, 0]) + b"a\0\0" for place in range(full // 11)]
sample, at, structures = open(work + "/sample", "rb").read()[32:], 0, []
while at < len(sample):
    end = sample.index(b"\0\0", at + sample[at + 1]) + 2
    if sample[at] != 127:  # the end of the table
        structures.append(sample[at:end])
    at = end
table = b""
while len(table) + len(structures[0]) <= full:
    table += structures[0]
    structures.append(structures.pop(0))
open(work + "/usual", "wb").write(table)
open(work + "/small", "wb").write(b"".join(small))
open(work + "/cut", "wb").write(b"".join(bytes([4, 4, place % 256, place // 256, 0, 0]) for place in range(full // 6)))
PYTHON

peak() {
    name=$1
    shift
    /usr/bin/time -f "$name kilobytes %M" -o "$work/peak" "$quorlin" "$@" >/dev/null
    cat "$work/peak"
}

for table in usual small cut; do
    for format in lines text json ndjson csv; do
        peak "$table/$format" --image "$work/$table" --as table --format $format
    done
done
