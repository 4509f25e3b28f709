#!/bin/sh
# The installed tree of a Windows build: what the DLL exports and needs, and the host of Tests/Host and the C example,
# built against the installed tree and run under Wine.
#
#     run-windows.sh SOURCE BUILD      with WINEPREFIX set to a prefix that is ready
set -eu
source=$1 build=$2
work=$build/install-test
stage=$work/stage
sample=$work/sample.bin

fail() {
    echo "$*" >&2
    exit 1
}

rm -rf "$work"
mkdir -p "$work"
DESTDIR='' cmake --install "$build" --prefix "$stage" >/dev/null
cd "$work"
python3 "$source/Tests/Install/exports.py" "$stage/bin/quorlin.dll" "$stage/include/quorlin"
# Nothing beyond Windows' own.
foreign=$(objdump -p "$stage/bin/quorlin.dll" | sed -n 's/.*DLL Name: //p' |
    grep -ivxE '(kernel32|advapi32|shell32|msvcrt)\.dll' || true)
[ -z "$foreign" ] || fail "quorlin.dll needs $foreign"

cmake -S "$source/Tests/Host" -B host-build -DQUORLIN_INCLUDE="$stage/include/quorlin" \
    -DCMAKE_TOOLCHAIN_FILE="$source/cmake/mingw-w64.cmake" >/dev/null
cmake --build host-build >/dev/null
x86_64-w64-mingw32-gcc-posix -D__USE_MINGW_ANSI_STDIO=1 -I"$stage/include" "$source/Docs/examples/items.c" \
    -L"$stage/lib" -lquorlin -o items-c.exe
cp host-build/host.exe items-c.exe "$stage/bin"
cd "$stage/bin"

wine "$build/bin/WriteSample.exe" "Z:$sample"
# What a program prints, without the carriage returns of its C runtime's text mode.
items() {
    wine "$@" >"$work/printed.txt" || fail "$* fails"
    tr -d '\r' <"$work/printed.txt"
}
items quorlin.exe --image "Z:$sample" --format lines >"$work/program.txt"
[ -s "$work/program.txt" ] || fail 'quorlin.exe shows nothing'
items host.exe quorlin.dll "Z:$sample" >"$work/host.txt"
cmp "$work/program.txt" "$work/host.txt" || fail 'the host gives other items than quorlin.exe'
items host.exe quorlin.dll --without-driver >"$work/machine.txt"
[ -s "$work/machine.txt" ] || fail 'the host shows nothing of this machine'
items items-c.exe "Z:$sample" >"$work/items-c.txt"
[ "$(wc -l <"$work/items-c.txt")" -eq $(($(wc -l <"$work/program.txt") + 1)) ] ||
    fail 'items-c.exe gives another number of items'
echo "$(wc -l <"$work/program.txt") items of the sample, $(wc -l <"$work/machine.txt") of this machine"
