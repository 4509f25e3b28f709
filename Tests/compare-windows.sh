#!/usr/bin/env bash
# Compares what quorlin.exe prints under Wine with what the native program prints, byte by byte: for the sample, and
# for every table image given as an argument.
set -euo pipefail
cd "$(dirname "$0")/.."
[ -n "${WINEPREFIX:-}" ] || exec cmake/with-wine.sh Tests/compare-windows.sh "$@"

native=build/release/bin/quorlin
windows=build/windows/bin/quorlin.exe
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

compared=0
compare() {
    local status=0 wine_status=0
    "$native" "$@" >"$scratch/native" || status=$?
    wine "$windows" "$@" >"$scratch/windows" 2>"$scratch/errors" || wine_status=$?
    # Some commands answer with 1; more is trouble.
    if [ "$status" -gt 1 ] || [ "$status" != "$wine_status" ] || ! cmp "$scratch/native" "$scratch/windows"; then
        echo "FAILED: quorlin $* (exit codes $status native, $wine_status under Wine)" >&2
        cat "$scratch/errors" >&2
        exit 1
    fi
    compared=$((compared + 1))
}

# Each command on one table, in each of its formats.
compare_table() {
    for format in lines text json ndjson csv; do compare "$@" --format $format; done
    for command in types "find serial" "get 1 Manufacturer" raw check; do
        # shellcheck disable=SC2086  # a command and its arguments
        compare $command "$@"
    done
}

compare_table --sample
for image in "$@"; do compare_table --image "$image"; done
if [ $# -ge 2 ]; then compare diff "$1" "$2" --ignore Handle; fi
compare --sample --format lines --type 148
compare --sample --format lines --type 148 --signature 30670
compare --sample --format lines --type 148 --signature 506C0
echo "$compared outputs, the same bytes on both platforms"
