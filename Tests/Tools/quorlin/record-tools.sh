#!/bin/bash
# Records a machine, and compares what other tools read in the record with what quorlin shows of it.
#
#   record-tools.sh QUORLIN FOLDER [RECORD]
#
#   RECORD  a record of another machine; without it, this machine is recorded
#
# Needs acpixtract, lspci, cpuid and dmidecode.
set -eu -o pipefail
quorlin=$1 work=$2
rm -rf "$work"
mkdir -p "$work/tables"
record=${3:-$work/record}
[ $# = 3 ] || "$quorlin" record "$record" 2>"$work/errors"
replay() { "$quorlin" "$@" --replay "$record"; }
fail() {
    echo "$*" >&2
    exit 1
}

# Each file is the one that the description names.
grep -o '"name": "[^"]*", "sha256": "[^"]*"' "$record/machine.json" |
    sed 's/.*: "\(.*\)", .*: "\(.*\)"/\2  \1/' | (cd "$record" && sha256sum --quiet -c -)

# ACPI: as many tables, and the first of each name byte for byte. acpixtract names them in lower case.
if [ -s "$record/acpi.dat" ]; then
    (cd "$work/tables" && acpixtract -a "$record/acpi.dat" >../acpixtract.log)
    while read -r name _; do
        file=$work/tables/$(printf %s "$name" | tr '[:upper:]' '[:lower:]').dat
        [ -e "$file" ] || file=${file%.dat}1.dat
        replay hw acpi "$name" --out "$work/$name"
        cmp "$work/$name" "$file" || fail "ACPI table $name"
    done < <(replay hw acpi | sed '1d; / -$/d')
    [ "$(find "$work/tables" -type f | wc -l)" = "$(grep -c ' @ 0x' "$record/acpi.dat")" ] || fail "ACPI tables"
fi

# PCI: all bytes of each function.
if [ -e "$record/pci.txt" ]; then
    lspci -F "$record/pci.txt" -D -n -xxxx >"$work/lspci"
    functions=0
    while read -r place _; do
        sed -n "/^$place /,/^\$/s/^[0-9a-f]*: //p" "$work/lspci" | tr ' ' '\n' >"$work/theirs"
        replay hw pci "$place" 0 "$(wc -l <"$work/theirs")" | tr ' ' '\n' >"$work/ours"
        cmp "$work/ours" "$work/theirs" || fail "PCI function $place"
        functions=$((functions + 1))
    done < <(grep -E '^[0-9a-f]{4}:' "$record/pci.txt")
    [ $functions = "$(grep -cE '^[0-9a-f]{4}:' "$work/lspci")" ] || fail "PCI functions"
fi

# CPUID, unless the machine is an ARM64 one: the registers of all leaves of processor 0, of leaves 0 and 1 of each
# processor, and its maker.
if ! grep -q '"midr": \[[0-9]' "$record/machine.json"; then
    cpuid -r -f "$record/cpuid.txt" >"$work/cpuid"
    while read -r leaf subleaf registers; do
        ours=$(replay hw cpuid "$leaf" "${subleaf%:}" --cpu 0 | sed 's/\(e[a-d]x\) /\1=0x/g')
        [ "$ours" = "$registers" ] || fail "CPUID leaf $leaf $subleaf $registers: $ours"
    done < <(sed -n '/^CPU 0:/,/^CPU 1:/s/^ *0x/0x/p' "$work/cpuid")
    processors=$(grep -c '^CPU ' "$record/cpuid.txt")
    for processor in $(seq 0 $((processors - 1))); do
        for leaf in 0 1; do
            ours=$(replay hw cpuid $leaf --cpu "$processor" | sed 's/\(e[a-d]x\) /\1=0x/g')
            sed -n "/^CPU $processor:/,/^CPU $((processor + 1)):/p" "$work/cpuid" |
                grep -F "0x0000000$leaf 0x00: $ours" >/dev/null || fail "CPUID leaf $leaf of processor $processor"
        done
    done
    [ "$(cpuid -f "$record/cpuid.txt" | grep -c 'vendor_id')" = "$processors" ] || fail "makers"
fi

# The table: as many structures, and a keyword of each of the main ones.
if [ -e "$record/dmi.bin" ]; then
    [ "$(replay raw | grep -c '^Handle ')" = "$(dmidecode --from-dump "$record/dmi.bin" | grep -c '^Handle ')" ] ||
        fail "structures"
    for keyword in bios-vendor bios-version system-manufacturer system-product-name system-uuid chassis-manufacturer; do
        replay get $keyword >"$work/ours" || true
        dmidecode --from-dump "$record/dmi.bin" -s $keyword >"$work/theirs"
        cmp "$work/ours" "$work/theirs" || fail "$keyword"
    done
fi
