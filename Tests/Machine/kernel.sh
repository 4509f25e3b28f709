#!/bin/sh
# Downloads Debian's kernel for an architecture and unpacks it into a folder, without installing it: vmlinuz. For amd64
# also vmlinux, which boots twice as fast but not with every firmware, and the module msr.ko; for arm64 also busybox.
# Does nothing if they exist.
#
#     Tests/Machine/kernel.sh FOLDER amd64|arm64
set -eu
folder=$1 architecture=$2
[ ! -s "$folder/vmlinuz" ] || exit 0
unpacker=$(cd "$(dirname "$0")/../.." && pwd)/cmake/arm64-packages.sh
rm -rf "$folder"
mkdir -p "$folder/apt"
cd "$folder"

failed() {
    echo "kernel.sh: $*" >&2
    exit 1
}

# Unpacks a package here, and keeps it as apt/PACKAGE. Old package lists name a kernel that no server has any more.
unpack() {
    if [ "$architecture" = arm64 ]; then
        "$unpacker" . "$1"
        return
    fi
    sudo=
    [ "$(id -u)" = 0 ] || sudo=sudo
    apt-get download -qq "$1" || { $sudo apt-get update -qq && apt-get download -qq "$1"; } ||
        failed "$1 could not be downloaded"
    dpkg -x "$1"_*.deb .
    mv "$1"_*.deb "apt/$1"
}

# The first package only depends on the kernel.
unpack "linux-image-$architecture"
package=$(dpkg-deb -f "apt/linux-image-$architecture" Depends | sed 's/ .*//')
unpack "$package"
if [ "$architecture" = arm64 ]; then
    unpack busybox-static
    mv bin/busybox busybox
else
    find lib -name msr.ko -exec mv {} msr.ko \;
    # The image's boot header has the payload's offset and size.
    image=$(echo boot/vmlinuz-*)
    number() { od -An -t"$2" -j "$1" -N "${2#u}" "$image" | tr -d ' '; }
    start=$(((1 + $(number 497 u1)) * 512 + $(number 584 u4)))
    tail -c +$((start + 1)) "$image" | head -c "$(number 588 u4)" | xz -dc --single-stream >vmlinux
fi
mv boot/vmlinuz-* vmlinuz.new
rm -rf apt bin boot lib usr
mv vmlinuz.new vmlinuz
