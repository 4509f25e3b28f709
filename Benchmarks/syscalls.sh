#!/bin/sh
# Counts the system calls of whole runs of the program, including the start of the process, with strace:
#   Benchmarks/syscalls.sh [QUORLIN]
# Prints a line for each run, "NAME calls COUNT", for compare.py. A count above its bound is an error. The image is
# kvm-qemu-old.bin in the folder QUORLIN_BENCH_IMAGES, or else a similar one.
set -eu
quorlin=${1:-build/bench/bin/quorlin}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trouble=0

count() {
    name=$1 most=$2
    shift 2
    # The program exits with 1 on a machine without a table.
    strace -f -o "$work/log" "$quorlin" "$@" >"$work/output" 2>&1 || [ $? = 1 ]
    calls=$(grep -c '(' "$work/log")
    echo "$name calls $calls"
    [ "$calls" -le "$most" ] && return
    echo "$name: at most $most are allowed" >&2
    trouble=1
}

image=${QUORLIN_BENCH_IMAGES:-$work}/kvm-qemu-old.bin
[ -f "$image" ] || {
    image=$work/image
    python3 - "$image" <<'PYTHON'
import struct, sys

def structure(number, length, strings):
    return struct.pack("<BBH", number, length, number) + bytes(length - 4) + strings + b"\0" * (1 if strings else 2)

table = structure(0, 24, b"Maker\0" + b"1.0\0") + structure(1, 27, b"Machine\0") + structure(3, 13, b"")
table += structure(4, 32, b"Processor\0") + structure(16, 15, b"") + structure(17, 21, b"Module 0\0")
table += structure(19, 15, b"") + structure(32, 11, b"")
table += structure(11, 266 - 32 - len(table) - 6 - 2, b"") + structure(127, 4, b"")
entry = b"_SM_\0\x1f\2\4" + bytes(8) + b"_DMI_\0" + struct.pack("<HIHB", len(table), 32, 10, 0x24) + b"\0"
open(sys.argv[1], "wb").write(entry + table)
PYTHON
}
count pci 40 hw pci 0000:00:00.0 2 5
count cpuid 30 hw cpuid 0
count machine 60
count image 45 --image "$image"
exit $trouble
