#!/bin/sh
# Counts the instructions of whole runs of the program, including the start of the process, with callgrind:
#   Benchmarks/instructions.sh [QUORLIN [FOLDER]]
# Prints a line for each run, "NAME instructions COUNT", for compare.py. FOLDER contains table images; the default is
# QUORLIN_BENCH_IMAGES.
set -eu
quorlin=${1:-build/bench/bin/quorlin}
folder=${2:-${QUORLIN_BENCH_IMAGES:-}}
log=$(mktemp)
trap 'rm -f "$log"' EXIT

count() {
    name=$1
    shift
    # The start of a process reads its environment, which differs between machines.
    env -i PATH="$PATH" valgrind --tool=callgrind --callgrind-out-file=/dev/null --log-file="$log" \
        "$quorlin" "$@" >/dev/null
    echo "$name instructions $(sed -n 's/,//g; s/.*I *refs: *//p' "$log")"
}

count start --version
count sample/type0 --sample --type 0
for format in lines text json ndjson csv; do count "sample/$format" --sample --format $format; done
[ -n "$folder" ] || exit 0
for image in "$folder"/*; do
    "$quorlin" --image "$image" >/dev/null 2>&1 || continue # no table
    name=$(basename "$image")
    count "${name%.*}" --image "$image" --format lines
done
