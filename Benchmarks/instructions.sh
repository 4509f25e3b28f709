#!/bin/sh
# The instructions of whole runs of the host program, the start of the process included, as callgrind counts them:
#   Benchmarks/instructions.sh [QUORLIN [FOLDER]]
# One line a run, "NAME instructions COUNT", for compare.py. FOLDER holds table images; without it QUORLIN_BENCH_IMAGES
# names it.
set -eu
quorlin=${1:-build/bench/bin/quorlin}
folder=${2:-${QUORLIN_BENCH_IMAGES:-}}
log=$(mktemp)
trap 'rm -f "$log"' EXIT

count() {
    name=$1
    shift
    # The start reads the environment, which is another one everywhere.
    env -i PATH="$PATH" valgrind --tool=callgrind --callgrind-out-file=/dev/null --log-file="$log" "$quorlin" "$@" >/dev/null
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
