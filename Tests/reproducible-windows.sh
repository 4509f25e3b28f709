#!/bin/sh
# Builds and packs the tree for Windows again, in another folder and with another umask. The results must be the same
# bytes as those of `make zip`.
set -eu
cd "$(dirname "$0")/.."
first=$PWD
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
second=$work/with-a-longer-name/in/depth
(
    umask 077
    mkdir -p "$second"
    git ls-files -z | xargs -0 cp --parents -t "$second"
    cd "$second"
    # A compiler cache would return the first build's objects.
    export CCACHE_DISABLE=1
    cmake --preset windows && cmake --build --preset windows && cmake/make-zip.sh build/windows
) >"$work/log" || { cat "$work/log" >&2; exit 1; }
for file in "$first"/build/windows/*.zip "$first"/build/windows/zip/*/bin/* "$first"/build/windows/zip/*/lib/*.a; do
    cmp "$file" "$second/${file#"$first/"}"
done
echo 'The same bytes from both folders: the programs, the import library, and the zip'
