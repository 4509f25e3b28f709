#!/bin/sh
# Downloads Debian's kernel and unpacks it into a folder, without installing it: vmlinuz, vmlinux, which boots twice as
# fast but not with every firmware, and the module msr.ko. Does nothing if they exist.
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
# Old package lists name a kernel that no server has any more.
apt-get download -qq "$package" || { $sudo apt-get update -qq && apt-get download -qq "$package"; } ||
    failed "$package could not be downloaded"
dpkg -x "$package"_*.deb .
mv boot/vmlinuz-* vmlinuz
# The image's boot header has the payload's offset and size.
number() { od -An -t"$2" -j "$1" -N "${2#u}" vmlinuz | tr -d ' '; }
start=$(((1 + $(number 497 u1)) * 512 + $(number 584 u4)))
tail -c +$((start + 1)) vmlinuz | head -c "$(number 588 u4)" | xz -dc --single-stream >vmlinux
find lib usr -name msr.ko -exec cp {} msr.ko.new \;
rm -rf boot lib usr ./*.deb
mv msr.ko.new msr.ko
