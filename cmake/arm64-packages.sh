#!/bin/sh
# Unpacks Debian packages for arm64 into a folder: arm64-packages.sh FOLDER PACKAGE... The package lists are this
# folder's own, so nothing changes on this machine. Does nothing if all are there. DEBIAN/symbols gets what the packages
# say of their libraries' symbols, for dpkg-shlibdeps -S.
set -eu
folder=$1
shift
mkdir -p "$folder/DEBIAN" "$folder/apt/lists/partial" "$folder/apt/cache/archives/partial"
cd "$folder"

missing=
for package in "$@"; do [ -e "apt/$package" ] || missing="$missing $package"; done
[ -n "$missing" ] || exit 0
echo "Downloading for arm64:$missing" >&2

apt() {
    apt-get -qq -o APT::Architecture=arm64 -o APT::Architectures::=arm64 -o Dir::State::Lists="$PWD/apt/lists" \
        -o Dir::State::status=/dev/null -o Dir::Cache="$PWD/apt/cache" -o APT::Sandbox::User="$(id -un)" "$@"
}

apt update || echo "Not all package lists for arm64 could be downloaded" >&2
for package in $missing; do
    apt download "$package" || { echo "Could not download $package for arm64" >&2; exit 1; }
    dpkg -x "$package"_*_arm64.deb .
    dpkg-deb -I "$package"_*_arm64.deb symbols >>DEBIAN/symbols 2>/dev/null || true # not every package has libraries
    mv "$package"_*_arm64.deb "apt/$package"
done
# Links from the root folder lead to this folder.
find . -type l -lname '/*' -exec sh -c 'ln -sfnr ".$(readlink "$1")" "$1"' sh {} \;
