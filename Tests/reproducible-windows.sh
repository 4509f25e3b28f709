#!/bin/sh
# Builds and packs the last commit for Windows in two folders and with two umasks. All results must be the same bytes.
set -eu
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
first=$work/first second=$work/second-with-a-longer-name/in/depth

# build FOLDER UMASK
build() (
    umask "$2"
    mkdir -p "$1"
    git archive HEAD | tar -x --no-same-permissions -C "$1"
    cd "$1" || exit 1
    # A compiler cache would return the first build's objects.
    export CCACHE_DISABLE=1
    cmake --preset windows && cmake --build --preset windows && cmake/make-zip.sh build/windows
)

build "$first" 022 >"$work/log" || { cat "$work/log" >&2; exit 1; }
build "$second" 077 >"$work/log" || { cat "$work/log" >&2; exit 1; }
for file in "$first"/build/windows/*.zip "$first"/build/windows/zip/*/bin/* "$first"/build/windows/zip/*/lib/*.a; do
    cmp "$file" "$second/${file#"$first/"}"
done
echo 'The same bytes from both folders: the programs, the import library, and the zip'
