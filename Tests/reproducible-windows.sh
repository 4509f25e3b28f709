#!/bin/sh
# Builds the last commit for Windows in two folders and compares what came out, byte for byte.
set -eu
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
files='bin/quorlin.dll bin/quorlin.exe lib/libquorlin.dll.a'
for folder in "$work/first" "$work/second-with-a-longer-name/in/depth"; do
    mkdir -p "$folder"
    git archive HEAD | tar -x -C "$folder"
    # A compiler cache would hand out the first build's objects.
    (cd "$folder" && export CCACHE_DISABLE=1 && cmake --preset windows && cmake --build --preset windows) >"$work/log" ||
        { cat "$work/log" >&2; exit 1; }
done
for file in $files; do
    cmp "$work/first/build/windows/$file" "$work/second-with-a-longer-name/in/depth/build/windows/$file"
done
echo "The same bytes from both folders: $files"
