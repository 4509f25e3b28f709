#!/bin/sh
# Checks a Windows tree: the imports and manifests of its files, and the examples, built against it and run under Wine
# without the compiler's files.
#
#     windows-tree.sh TREE EXAMPLES WORK      expects WINEPREFIX
set -eu
tree=$1 examples=$2 work=$3
toolchain=$(cd "$(dirname "$0")/../.." && pwd)/cmake/mingw-w64.cmake
program=$tree/bin/quorlin.exe

fail() {
    echo "$*" >&2
    exit 1
}

# needs FILE DLLS: fails if FILE imports from other DLLs.
needs() {
    foreign=$(x86_64-w64-mingw32-objdump -p "$1" | sed -n 's/.*DLL Name: //p' | grep -ivxE "($2)\.dll" || true)
    [ -z "$foreign" ] || fail "$1 needs $foreign"
}

needs "$tree/bin/quorlin.dll" 'kernel32|advapi32|msvcrt'
needs "$program" 'kernel32|advapi32|msvcrt'
if x86_64-w64-mingw32-objdump -p "$program" | grep -q 'export table'; then fail 'quorlin.exe has exports'; fi
for setting in 'level="asInvoker"' '>UTF-8</activeCodePage>' '>true</longPathAware>'; do
    grep -aqF "$setting" "$program" || fail "quorlin.exe has no manifest with $setting"
done

mkdir -p "$work"
cmake -S "$examples" -B "$work/build" -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_PREFIX_PATH="$tree" >/dev/null
cmake --build "$work/build" >/dev/null
mkdir -p "$work/bare"
cp "$work"/build/*.exe "$work"/build/*.dll "$work/bare"
for file in "$work"/bare/*.exe; do needs "$file" 'kernel32|advapi32|msvcrt|quorlin'; done
cmp "$tree/bin/quorlin.dll" "$work/bare/quorlin.dll" || fail 'the examples use another DLL'

# Prints a program's output without the carriage returns of text mode.
items() {
    wine "$@" >"$work/printed.txt" || fail "$* fails"
    tr -d '\r' <"$work/printed.txt"
}
cd "$work/bare"
rm -f dump.bin
wine "$program" dump --sample dump.bin || fail 'quorlin.exe writes no dump'
# Drops the entry point.
tail -c +33 dump.bin >table.bin
items "$program" --image dump.bin --format lines >program.txt
[ -s program.txt ] || fail 'quorlin.exe shows nothing'
items items-cpp.exe table.bin >items-cpp.txt
cmp program.txt items-cpp.txt || fail 'items-cpp.exe shows other items than quorlin.exe'
items items-c.exe dump.bin >items-c.txt
[ "$(wc -l <items-c.txt)" -eq $(($(wc -l <program.txt) + 1)) ] || fail 'items-c.exe shows another number of items'
[ "$(items containers-cpp.exe | tail -n 1)" = '2 Willow' ] || fail "containers-cpp.exe doesn't sort"
if wine acpi-cpp.exe NONE 2>errors.txt; then fail "acpi-cpp.exe shows a table that doesn't exist"; fi
grep -q 'NONE: not available' errors.txt || fail "acpi-cpp.exe says: $(cat errors.txt)"
echo "Every program shows the same $(wc -l <program.txt) items of the sample"
