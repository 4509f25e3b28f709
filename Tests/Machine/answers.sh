#!/bin/sh
# Writes what a machine answers to many commands into a new folder, a file for each with its exit code.
#
#     answers.sh QUORLIN FOLDER [OPTION...]      the options follow each command
quorlin=$1 folder=$2
shift 2
mkdir -p "$folder" || exit 1
number=10
while read -r command; do
    # shellcheck disable=SC2086  # words are arguments
    $quorlin $command "$@" >"$folder/$number" 2>"$folder/errors"
    echo "$command: $?" >>"$folder/$number"
    number=$((number + 1))
done <<END
show
show --format lines
show --format json --type 0-4
types --format csv
summary
facts --format ndjson
find a
get system-manufacturer
get 4 Handle
explain 0-4
raw
check --severity note
dump -
hw cpuid 0
hw cpuid 1 --cpu 0
hw cpuid 1 --cpu 1
hw cpuid 1 --cpu 9
hw cpuid 7
hw cpuid 0x80000002
hw pci 0000:00:00.0 0 256
hw pci 0000:00:01.0 0 64
hw pci 0000:00:1f.0 0 64
hw pci 0000:00:1e.7 0 16
hw pci 0000:01:00.0 0 256
hw pci 0000:01:00.0 0x100 64
hw msr read 0x1b
hw msr read 0x1b --cpu 1
hw msr read 0xfe
hw acpi
hw acpi FACP
hw acpi APIC
hw acpi MCFG
hw acpi NONE
hw segments
hw versions
END
rm "$folder/errors"
