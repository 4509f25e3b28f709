#!/bin/sh
# Boots a small Linux in an emulator, whose firmware has an SMBIOS table, and runs the library there: both access
# methods, the hardware library against the guest's kernel, refusals, sharing, a crash. Needs no rights except for
# installing packages, and no network once it has the kernel. Fails if something that it needs is missing.
#
#     Tests/Machine/run.sh [JOB...]      boots these, such as arm64 and arm64-claims; without arguments all for x86-64
set -eu
cd "$(dirname "$0")/../.."
work=$PWD/build/machine static=$PWD/build/static
jobs=${*:-q35 uefi sm3 pc lockdown efi sample}
has_job() { printf '%s\n' $jobs | grep -q "$@"; }  # as grep is told

cmake/install-packages.sh g++ cmake ninja-build libsodium-dev rapidjson-dev zlib1g-dev libgtest-dev busybox-static \
    xz-utils acpica-tools pciutils cpuid dmidecode

# build FOLDER TARGET...
build() {
    cmake --build "$@" >"$work/build.log" && return
    tail -40 "$work/build.log"
    exit 1
}

mkdir -p "$work"
# Static programs, as the guest has no libraries. A cache has their objects from the release, whose folder is as deep.
# This machine makes the table, and replays records of all guests.
cmake --preset release -B "$static" -DCMAKE_EXE_LINKER_FLAGS=-static -DQUORLIN_STATIC_RUNTIME=OFF \
    -DZLIB_USE_STATIC_LIBS=ON >/dev/null
build "$static" --target quorlin_program
rm -rf "$work"/root-* "$work/sample" "$work"/claims-*
mkdir "$work/sample"
# The sample without the entry point, and a file for each structure. UEFI firmware gives its own handle to the
# End-of-Table structure, so that one gets it everywhere.
{
    "$static/bin/quorlin" dump --sample - | tail -c +33 | head -c -6
    printf '\177\004\377\376\000\000'
} >"$work/sample/table"
"$static/bin/quorlin" raw --sample | sed -n 's/^Handle .* \([0-9]*\) bytes at offset \(.*\)h$/\1 0x\2/p' |
    while read -r size offset; do
        tail -c +$((offset + 1)) "$work/sample/table" | head -c "$size" >"$work/sample/$offset"
        echo "-smbios file=$work/sample/$offset"
    done >"$work/sample/options"
sample="-smp 2,sockets=5,maxcpus=5 $(cat "$work/sample/options")"  # the emulator requires a socket for each processor
programs="quorlin MachineTest LinuxHardwareTest OSTest"

# pack ARCHITECTURE PROGRAMS BUSYBOX: the guests' first files, to which the caller may have added some
pack() {
    root=$work/root-$1
    mkdir -p "$root/bin" "$root/etc" "$root$2"
    for program in $programs; do cp "$2/$program" "$root/bin"; done
    cp "$3" "$root/bin"
    cp "$work/sample/table" Tests/Machine/init Tests/Machine/answers.sh Tests/Machine/lies.sh "$root"
    ln -s /bin/quorlin "$root$2/quorlin"  # where the tests expect it
    chmod 755 "$root/init"
    printf 'root:x:0:0::/:/bin/sh\nnobody:x:65534:65534::/:/bin/sh\n' >"$root/etc/passwd"
    (cd "$root" && find . | busybox cpio -o -H newc 2>/dev/null | gzip -1) >"$work/initramfs-$1"
}

if has_job -v '^arm64'; then
    cmake/install-packages.sh qemu-system-x86 seabios ovmf
    Tests/Machine/kernel.sh "$work/kernel-amd64" amd64
    build "$static" --target MachineTest LinuxHardwareTest OSTest
    mkdir "$work/root-amd64"
    cp "$work/kernel-amd64/msr.ko" "$work/root-amd64"
    pack amd64 "$static/bin" /bin/busybox
fi
if has_job '^arm64'; then
    cmake/install-packages.sh g++-aarch64-linux-gnu qemu-user-static googletest qemu-system-arm qemu-efi-aarch64
    Tests/Machine/kernel.sh "$work/kernel-arm64" arm64
    cmake/arm64-packages.sh build/arm64-packages libsodium-dev zlib1g-dev
    cmake --preset arm64 -DQUORLIN_TESTS=ON >/dev/null
    build build/arm64 --target quorlin_program MachineTest LinuxHardwareTest OSTest
    libraries=/usr/aarch64-linux-gnu/lib  # where the tests look for them
    mkdir -p "$work/root-arm64$libraries"
    for library in ld-linux-aarch64.so.1 libc.so.6 libm.so.6 libgcc_s.so.1 libstdc++.so.6; do
        cp "$libraries/$library" "$work/root-arm64$libraries"
    done
    pack arm64 "$PWD/build/arm64/bin" "$work/kernel-arm64/busybox"
fi

# Runs a command as a user without rights, and without /sys and names of PCI devices, which guests lack too.
as_stranger() {
    hide='mount -t tmpfs none /sys && { [ ! -d /usr/share/misc ] || mount -t tmpfs none /usr/share/misc; }'
    if [ "$(id -u)" = 0 ]; then
        unshare -m sh -c "$hide"' && exec setpriv --reuid 65534 --regid 65534 --clear-groups "$@"' sh "$@"
    else
        unshare -Urm sh -c "$hide"' && exec "$@"' sh "$@"
    fi
}

# If the guest printed a record, this machine must answer from it as the guest did, and other tools must read it.
replays() {
    grep -q '^record: begin' "$work/$job.log" || return 0
    folder=$(mktemp -d)
    chmod 755 "$folder"
    sed -n '/^record: begin/,/^record: end/p' "$work/$job.log" | sed '1d;$d' | base64 -d | tar -xz -C "$folder"
    cp "$static/bin/quorlin" Tests/Machine/answers.sh Tests/Machine/lies.sh "$folder"
    mkdir -m 777 "$folder/here"
    ok=1
    as_stranger test ! -e /sys/firmware &&
        as_stranger sh "$folder/answers.sh" "$folder/quorlin" "$folder/here/answers" --replay "$folder/record" &&
        { [ ! -d "$folder/answers/lies" ] || as_stranger sh "$folder/lies.sh" "$folder/quorlin" \
            "$folder/here/answers/lies" "[!u]*" --replay "$folder/record"; } &&
        diff -r "$folder/answers" "$folder/here/answers" &&
        as_stranger "$folder/quorlin" record "$folder/here/copy" --replay "$folder/record" 2>/dev/null &&
        diff -r "$folder/record" "$folder/here/copy" &&
        bash Tests/Tools/quorlin/record-tools.sh "$folder/quorlin" "$folder/tools" "$folder/record" && ok=0
    [ $ok = 1 ] || echo "  ok: this machine answers as the guest, and other tools read its record"
    rm -rf "$folder"
    return $ok
}

# boot JOB MACHINE PROCESSOR KERNEL-OPTIONS EMULATOR-OPTIONS...
boot() {
    job=$1 machine=$2 processor=$3 kernelOptions=$4
    shift 4
    started=$(date +%s)
    timeout 500 "qemu-system-$emulator" -nographic -no-reboot -net none -m 512 -machine "$machine" -cpu "$processor" \
        -kernel "$work/kernel-$architecture/$kernel" -initrd "$work/initramfs-$architecture" \
        -append "console=$console quiet panic=-1 job=$job $kernelOptions" "$@" </dev/null 2>&1 |
        tr -d '\r' >"$work/$job.log" || true
    sed -n '/^ok: \|^left out here: /s/^/  /p' "$work/$job.log"
    if grep -qx 'guest: done' "$work/$job.log" && replays; then
        echo "$job: done in $(($(date +%s) - started)) s"
    else
        echo "$job: FAILED; its log:"
        cat "$work/$job.log"
        return 1
    fi
}

# boot_arm64 JOB EMULATOR-OPTIONS...: with UEFI firmware
boot_arm64() {
    job=$1 architecture=arm64 emulator=aarch64 console=ttyAMA0 kernel=vmlinuz
    shift
    boot "$job" virt cortex-a72 "" -bios /usr/share/qemu-efi-aarch64/QEMU_EFI.fd "$@"
}

architecture=amd64 emulator=x86_64 console=ttyS0 kernel=vmlinux
plain=max,la57=off
guest() {
    case $1 in
    pc) boot pc pc "$plain" "" -smp 2 -smbios type=1,manufacturer=Quorlin,product=Guest ;;
    q35)
        # Without a hypervisor all claims are judged. Only this maker's processors show caches.
        claims=$(Tests/Machine/claims.sh "$work/claims-amd64" amd64)
        # shellcheck disable=SC2086  # words are options
        boot q35 q35 "$plain,vendor=GenuineIntel,-hypervisor" "" -smp 2 $claims \
            -smbios type=1,manufacturer=Quorlin,product=Guest -smbios type=4,max-speed=3000,current-speed=3000
        ;;
    sample)
        # shellcheck disable=SC2086  # words are options
        boot sample pc "$plain" "" $sample
        ;;
    sm3) boot sm3 q35,smbios-entry-point-type=64 "$plain" "" ;;
    lockdown) boot lockdown pc "$plain" lockdown=integrity ;;
    uefi)
        kernel=vmlinuz  # this firmware only boots compressed kernels
        # shellcheck disable=SC2086
        boot uefi q35 "$plain" "" -bios /usr/share/ovmf/OVMF.fd $sample -device pcie-root-port,id=rp \
            -device virtio-rng-pci,bus=rp
        ;;
    efi)
        kernel=vmlinuz
        boot efi q35,smbios-entry-point-type=64 "$plain" "" -smp 2 -bios /usr/share/ovmf/OVMF.fd
        ;;
    arm64)
        # shellcheck disable=SC2086
        boot_arm64 arm64 $sample -device bochs-display -device pcie-root-port,id=rp -device virtio-rng-pci,bus=rp
        ;;
    arm64-claims)
        # shellcheck disable=SC2046
        boot_arm64 arm64-claims -smp 2,sockets=1,cores=2 $(Tests/Machine/claims.sh "$work/claims-arm64" arm64)
        ;;
    *)
        echo "unknown job '$1'" >&2
        return 1
        ;;
    esac
}

# One guest after another. Each prints in one piece, as guests of the other lane print too.
lane() {
    failed=0
    for name; do
        (guest "$name") >"$work/$name.result" 2>&1 || failed=1
        cat "$work/$name.result"
    done
    return $failed
}

# Two at a time, as an emulator mostly keeps one processor busy.
every_second() { printf '%s\n' $jobs | sed -n "$1~2p"; }
# shellcheck disable=SC2046  # words are jobs
lane $(every_second 1) &
other=$!
failed=0
# shellcheck disable=SC2046
lane $(every_second 2) || failed=1
wait $other || failed=1
[ $failed = 0 ] || exit 1
echo "Skipped tests: 0; a guest that skips one fails, and what it leaves out is listed above"
