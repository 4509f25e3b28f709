#!/bin/sh
# Packs a Windows build for users: make-zip.sh BUILD. Writes BUILD/quorlin-VERSION-windows-x86_64.zip; the same files
# give the same bytes.
set -eu
build=$1
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
name=quorlin-$version-windows-x86_64
rm -rf "$build/zip" "$build/$name.zip"
DESTDIR='' cmake --install "$build" --prefix "$build/zip/$name" >/dev/null
mkdir -p "$build/zip/$name/Docs"
cp Docs/Windows.md "$build/zip/$name/README.md"
cp CHANGELOG.md SECURITY.md "$build/zip/$name"
for document in Program.md Report.md report-memory.png report-structure.png Monitoring.md Record.md Linux.md \
    Formats.md json-schema.json Checks.md Verify.md Facts.md facts-schema.json Items.md Library.md Containers.md \
    Trace.md examples; do
    cp -r "Docs/$document" "$build/zip/$name/Docs"
done
# The page on Windows is the README here.
sed -i 's/](Linux\.md/](Docs\/Linux.md/' "$build/zip/$name/README.md"
sed -i 's/](Windows\.md/](..\/README.md/' "$build/zip/$name/Docs/"*.md
cd "$build/zip"
# An archive contains times and modes, which must not depend on the build or on the user's umask.
find "$name" -exec touch -d "@${SOURCE_DATE_EPOCH:-1767225600}" {} +
chmod -R u=rwX,go=rX "$name"
find "$name" | LC_ALL=C sort | TZ=UTC zip -q -X -@ "../$name.zip"
echo "$build/$name.zip"
