#!/bin/sh
# Packs what a Windows user needs, from a Windows build: make-zip.sh BUILD. Writes quorlin-VERSION-windows-x86_64.zip
# there, the same bytes for the same files.
set -eu
build=$1
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
name=quorlin-$version-windows-x86_64
rm -rf "$build/zip" "$build/$name.zip"
DESTDIR='' cmake --install "$build" --prefix "$build/zip/$name" >/dev/null
cp README.md CHANGELOG.md Docs/Library.md "$build/zip/$name"
cp -r Docs/examples "$build/zip/$name"
cd "$build/zip"
# The time that every entry gets, so that it isn't that of the build.
find "$name" -exec touch -d "@${SOURCE_DATE_EPOCH:-1767225600}" {} +
find "$name" | LC_ALL=C sort | TZ=UTC zip -q -X -@ "../$name.zip"
echo "$build/$name.zip"
