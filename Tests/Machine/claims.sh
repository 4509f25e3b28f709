#!/bin/sh
# Writes true structures about the guest q35, or that of ARM64, into a new folder, a file for each, and prints the
# emulator's options that put them into the guest's table, with the devices that they describe. Inactive structures
# aren't true: lies.sh makes lies of them.
#
#     Tests/Machine/claims.sh FOLDER amd64|arm64
set -eu
folder=$1 architecture=$2
mkdir "$folder"

# structure NAME BYTES: formatted area in hexadecimal; the strings are none, or one.
structure() {
    name=$1
    shift
    for byte in "$@"; do busybox printf "\\x$byte"; done >"$folder/$name"
    echo "-smbios file=$folder/$name"
}

#                         width, in use           address
structure slot 09 11 01 09 00 a5 08 04 03 01 00 04 00 00 00 01 00 00 00
structure wide 09 11 02 09 00 a5 0a 04 03 02 00 04 00 00 00 00 30 00 00
#                       type     address
structure video 29 0b 01 29 00 83 01 00 00 00 08 00 00
structure disks 29 0b 02 29 00 89 01 00 00 00 fa 00 00
# A processor in a socket, of which the cores aren't known, so that it changes the number of processors only.
structure processor 7e 1a 01 7e 00 03 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 41 01 00 00
structure tpm 7e 1f 02 7e 51 4c 52 4e 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00
# q35 has a display and disks anyway.
[ "$architecture" = amd64 ] ||
    echo "-device bochs-display,addr=1 -device ich9-ahci,addr=1f.0,multifunction=on -device ich9-ahci,addr=1f.2"
# The link of a port without a device has the width that the port can have.
echo "-device pcie-root-port,id=rp -device e1000e,bus=rp,romfile= -device pcie-root-port,addr=6,chassis=1,x-width=4"

if [ "$architecture" = arm64 ]; then
    # Two cores of one processor, whose MIDR is 410FD083h.
    structure cores 04 30 00 04 00 03 fe 00 83 d0 0f 41 00 00 00 00 00 00 00 00 d0 07 d0 07 41 01 ff ff ff ff ff ff \
        00 00 00 02 02 02 04 00 01 01 02 00 02 00 02 00 00 00
    exit
fi

# The emulated processors have 32 KiB of each kind at the first level, 4 MiB at the second, and share 16 MiB.
#                            level       KiB         kind
structure instructions 07 13 01 07 00 80 01 40 00 40 00 02 00 02 00 00 02 03 07 00 00
structure data         07 13 02 07 00 80 01 40 00 40 00 02 00 02 00 00 02 04 07 00 00
structure level2       07 13 03 07 00 81 01 00 20 00 20 02 00 02 00 00 02 05 08 00 00
structure level3       07 13 04 07 00 82 01 00 40 00 40 02 00 02 00 00 02 05 08 00 00

# What ACPI's table SPMI has after its header: a KCS interface of version 2.0 at port CA2h, which has the emulator's
# management controller.
structure spmi 01 00 00 02 00 00 00 00 00 00 00 00 01 08 00 01 a2 0c 00 00 00 00 00 00 00 00 00 00 00 >/dev/null
echo "-acpitable sig=SPMI,data=$folder/spmi -device ipmi-bmc-sim,id=bmc -device isa-ipmi-kcs,bmc=bmc"
