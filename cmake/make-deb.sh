#!/bin/sh
# Builds the Debian packages and checks them with lintian: make-deb.sh FOLDER. Works on a copy of the tree in FOLDER, as
# the tools write into the tree and into its parent folder.
set -eu
folder=$1
version=$(dpkg-parsechangelog -S Version)
rm -rf "$folder"
mkdir -p "$folder/quorlin-$version"
git ls-files -z | xargs -0 cp --parents -t "$folder/quorlin-$version"
(cd "$folder/quorlin-$version" && dpkg-buildpackage -b -us -uc >../build.log 2>&1) || {
    tail -n 40 "$folder/build.log" >&2
    exit 1
}
lintian --allow-root --display-info --fail-on error,warning,info "$folder"/*.changes
ls "$folder"/*.deb
