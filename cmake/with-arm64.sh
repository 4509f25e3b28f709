#!/bin/sh
# Runs a command on a machine that runs programs for ARM64 as its own, by an emulator: with-arm64.sh COMMAND...
# Root registers the emulator with the kernel, as Debian's packages do where binfmt_misc is mounted at boot; the
# registration stays until the next boot. Other users get a user namespace with a registration of its own.
set -eu
folder=/proc/sys/fs/binfmt_misc
[ ! -e $folder/qemu-aarch64 ] || exec "$@"
if [ "$(id -u)" != 0 ]; then exec unshare -Urm "$0" "$@"; fi
[ -e $folder/register ] || mount -t binfmt_misc none $folder
# Little-endian ELF programs for this architecture, static, dynamic or position independent. With F the kernel keeps the
# emulator open, so that it works in any root folder.
if [ ! -e $folder/qemu-aarch64 ]; then
    head='\x7fELF\x02\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\xb7\x00'
    mask='\xff\xff\xff\xff\xff\xff\xff\x00\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff'
    printf '%s' ":qemu-aarch64:M::$head:$mask:/usr/bin/qemu-aarch64-static:FP" >$folder/register
fi
exec "$@"
