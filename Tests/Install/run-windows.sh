#!/bin/sh
# Checks the installed tree of a Windows build: the exports of the DLL, the examples, and the host in Tests/Host, built
# against the installed headers and run under Wine.
#
#     run-windows.sh SOURCE BUILD      expects WINEPREFIX
set -eu
source=$1 build=$2
work=$build/install-test
stage=$work/stage

fail() {
    echo "$*" >&2
    exit 1
}

rm -rf "$work"
mkdir -p "$work"
DESTDIR='' cmake --install "$build" --prefix "$stage" >/dev/null
cd "$work"
python3 "$source/Tests/Install/exports.py" "$stage/bin/quorlin.dll" "$stage/include/quorlin"
"$source/Tests/Install/windows-tree.sh" "$stage" "$source/Docs/examples" "$work/examples"

cmake -S "$source/Tests/Host" -B host-build -DQUORLIN_INCLUDE="$stage/include/quorlin" \
    -DCMAKE_TOOLCHAIN_FILE="$source/cmake/mingw-w64.cmake" >/dev/null
cmake --build host-build >/dev/null
cp host-build/host.exe "$stage/bin"
cd "$stage/bin"

wine host.exe quorlin.dll "Z:$work/examples/bare/table.bin" | tr -d '\r' >"$work/host.txt"
cmp "$work/examples/bare/program.txt" "$work/host.txt" || fail 'the host shows other items than quorlin.exe'
wine host.exe quorlin.dll --without-driver >"$work/machine.txt" || fail 'the host fails on this machine'
[ -s "$work/machine.txt" ] || fail 'the host shows nothing of this machine'
echo "$(wc -l <"$work/machine.txt") items of this machine"
