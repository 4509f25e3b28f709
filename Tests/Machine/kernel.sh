#!/bin/sh
# Puts Debian's kernel into a folder, unpacked and never installed: vmlinuz, vmlinux, which starts twice as fast and
# needs a firmware that takes it, and the module msr.ko. Does nothing when they are there.
#
#     Tests/Machine/kernel.sh FOLDER
set -eu
folder=$1
[ ! -s "$folder/msr.ko" ] || exit 0
rm -rf "$folder"
mkdir -p "$folder"

failed() {
    echo "kernel.sh: $*" >&2
    exit 1
}

sudo=
[ "$(id -u)" = 0 ] || sudo=sudo
if ! apt-cache show linux-image-amd64 >/dev/null 2>&1; then
    $sudo apt-get update -qq || failed "the package lists could not be downloaded"
fi
package=$(apt-cache depends linux-image-amd64 | sed -n 's/.*Depends: \(linux-image-[^ ]*\).*/\1/p' | head -n 1)
[ -n "$package" ] || failed "no package source has linux-image-amd64"
cd "$folder"
# Lists that are too old name a kernel that is no longer served.
apt-get download -qq "$package" || { $sudo apt-get update -qq && apt-get download -qq "$package"; } ||
    failed "$package could not be downloaded"
dpkg -x "$package"_*.deb .
mv boot/vmlinuz-* vmlinuz
# The image's boot header tells the payload's place.
number() { od -An -t"$2" -j "$1" -N "${2#u}" vmlinuz | tr -d ' '; }
start=$(((1 + $(number 497 u1)) * 512 + $(number 584 u4)))
tail -c +$((start + 1)) vmlinuz | head -c "$(number 588 u4)" | xz -dc --single-stream >vmlinux
find lib usr -name msr.ko -exec cp {} msr.ko.new \;
rm -rf boot lib usr ./*.deb
mv msr.ko.new msr.ko
