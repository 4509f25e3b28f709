#!/usr/bin/env bash
# Compares the output of quorlin.exe under Wine with that of the native program, for the sample and for images:
# compare-windows.sh [IMAGE...]
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
    # Some commands exit with 1 to say no; more is an error.
    if [ "$status" -gt 1 ] || [ "$status" != "$wine_status" ] || ! cmp "$scratch/native" "$scratch/windows"; then
        echo "FAILED: quorlin $* (exit codes $status native, $wine_status under Wine)" >&2
        cat "$scratch/errors" >&2
        exit 1
    fi
    compared=$((compared + 1))
}

# Runs each command on one table, and show in each format.
compare_table() {
    for format in lines text json ndjson csv; do compare "$@" --format $format; done
    for command in types "find serial" "get 1 Manufacturer" raw check "report -"; do
        # shellcheck disable=SC2086  # a command and its arguments
        compare $command "$@"
    done
}

compare_table --sample
for image in "$@"; do compare_table --image "$image"; done
if [ $# -ge 2 ]; then compare diff "$1" "$2" --ignore serial_number; fi
compare --sample --format lines --type 148
compare --sample --format lines --type 148 --signature 30670
compare --sample --format lines --type 148 --signature 506C0
echo "$compared outputs are the same on both platforms"
