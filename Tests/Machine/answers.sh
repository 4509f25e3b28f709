#!/bin/sh
# Writes what a machine answers to many commands into a new folder, a file for each with its exit code.
#
#     answers.sh QUORLIN FOLDER [OPTION...]      QUORLIN is an absolute path; the options follow each command
quorlin=$1 folder=$2
shift 2
mkdir -p "$folder" && cd "$folder" || exit 1
printf 'a key of more than 16 bytes' >key
"$quorlin" dump table "$@" && "$quorlin" redact table redacted --key key || exit 1
number=10
while read -r command; do
    # shellcheck disable=SC2086  # words are arguments
    "$quorlin" $command "$@" >"$number" 2>errors
    echo "$command: $?" >>"$number"
    number=$((number + 1))
done <<END
show
show --format lines
show --format json
show --format ndjson --type 0-4
show --format csv
show --recover
summary
summary --format json
summary --format ndjson
types
types --format json
types --format ndjson
types --format csv
facts
facts --format json --full --absent
facts --format ndjson
facts --format csv
find a
find a --format json
find a --format ndjson
find a --format csv
get bios-version
get system-manufacturer
get system-uuid
get processor-frequency
get 4 Handle
get 1 uuid
explain 0-4
explain 16-19
raw
check --severity note
check --severity note --format json
check --severity note --format ndjson
check --severity note --format csv
check --severity note --format sarif
diff table
diff table --format json
diff redacted
diff redacted --format json
diff redacted --format ndjson
diff redacted --format csv
verify
verify --format json
verify --format ndjson
verify --format csv
dump -
hw cpuid 0
hw cpuid 1 --cpu 0
hw cpuid 1 --cpu 1
hw cpuid 1 --cpu 9
hw cpuid 1 9 --cpu 1
hw cpuid 4 1
hw cpuid 7
hw cpuid 0xb 1 --cpu 1
hw cpuid 0xd 2
hw cpuid 0x80000002
hw cpuid 0x80000008 3
hw pci 0000:00:00.0 0 256
hw pci 0000:00:01.0 0 64
hw pci 0000:00:1f.0 0 64
hw pci 0000:00:1e.7 0 16
hw pci 0000:01:00.0 0 256
hw pci 0000:01:00.0 0x100 64
hw pci 0000:00:00.0 0x100 64
hw msr read 0x1b
hw msr read 0x1b --cpu 1
hw msr read 0xfe
hw msr read 0xc0000080
hw acpi
hw acpi FACP
hw acpi APIC --out apic
hw acpi MCFG
hw acpi NONE
hw segments
hw versions
END
rm errors
# But for the line that says where the table is from.
for page in page "redacted-page --redact --key key"; do
    # shellcheck disable=SC2086
    "$quorlin" report $page "$@" || exit 1
done
sed -i '/Source: /d' page redacted-page
