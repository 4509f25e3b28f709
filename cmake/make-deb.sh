#!/bin/sh
# Builds the Debian packages and checks them with lintian: make-deb.sh FOLDER [ARCHITECTURE]. Works on a copy of the
# tree in FOLDER, as the tools write into the tree and into its parent folder. A cross build takes the libraries of the
# other architecture from build/ARCHITECTURE-packages.
set -eu
folder=$1
machine=$(dpkg --print-architecture)
architecture=${2:-$machine}
version=$(dpkg-parsechangelog -S Version)
rm -rf "$folder"
mkdir -p "$folder/quorlin-$version"
git ls-files -z | xargs -0 cp --parents -t "$folder/quorlin-$version"
options=
if [ "$architecture" != "$machine" ]; then
    # The build dependencies would have to be installed for the other architecture.
    options="--host-arch=$architecture --no-check-builddeps"
    mkdir "$folder/quorlin-$version/build"
    ln -s "$PWD/build/$architecture-packages" "$folder/quorlin-$version/build"
fi
# shellcheck disable=SC2086  # nothing, or words
(cd "$folder/quorlin-$version" && dpkg-buildpackage -b -us -uc $options >../build.log 2>&1) || {
    tail -n 40 "$folder/build.log" >&2
    exit 1
}
lintian --allow-root --display-info --fail-on error,warning,info "$folder"/*.changes
ls "$folder"/*.deb
