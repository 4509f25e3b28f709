#!/bin/sh
# Checks the program of the stub system: stub.sh PROGRAM. It must read images like the native program, and refuse this
# machine with one line.
set -eu
stub=$1
cd "$(dirname "$0")/.."
native=build/release/bin/quorlin
[ -x "$native" ] || make build
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$native" dump --sample "$work/image"
for format in lines text json csv; do
    "$native" --image "$work/image" --format $format >"$work/native"
    "$stub" --image "$work/image" --format $format >"$work/stub"
    cmp "$work/native" "$work/stub"
done
for command in "" "--method efi" "hw cpuid 0" "hw pci 0000:00:00.0 0 4" "hw acpi MCFG"; do
    code=0
    # shellcheck disable=SC2086  # words are arguments
    "$stub" $command >"$work/out" 2>"$work/errors" || code=$?
    [ $code = 1 ] && [ ! -s "$work/out" ] && [ "$(wc -l <"$work/errors")" = 1 ] && continue
    echo "stub: $command: exit code $code"
    cat "$work/out" "$work/errors"
    exit 1
done
{ "$stub" hw cpuid 0 2>&1 || true; } | grep -q 'no access to hardware on this system'
{ "$stub" doctor || true; } | grep -q '^SMBIOS table from the system: not available on this system$'
echo "The stub system reads images and refuses the machine."
