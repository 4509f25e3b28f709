#!/bin/sh
# A Windows tree as its users have it: what its files need and offer, and the examples, built against it and run under Wine
# where no file of the compiler is.
#
#     windows-tree.sh TREE EXAMPLES WORK      with WINEPREFIX set to a prefix that is ready
set -eu
tree=$1 examples=$2 work=$3
toolchain=$(cd "$(dirname "$0")/../.." && pwd)/cmake/mingw-w64.cmake
program=$tree/bin/quorlin.exe

fail() {
    echo "$*" >&2
    exit 1
}

# needs FILE DLLS: FILE imports from these and from nothing else.
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
cmp "$tree/bin/quorlin.dll" "$work/bare/quorlin.dll" || fail 'the examples have another DLL beside them'

# What a program prints, without the carriage returns of its C runtime's text mode.
items() {
    wine "$@" >"$work/printed.txt" || fail "$* fails"
    tr -d '\r' <"$work/printed.txt"
}
cd "$work/bare"
rm -f dump.bin
wine "$program" dump --sample dump.bin || fail 'quorlin.exe writes no dump'
# The bare table comes after the entry point.
tail -c +33 dump.bin >table.bin
items "$program" --image dump.bin --format lines >program.txt
[ -s program.txt ] || fail 'quorlin.exe shows nothing'
items items-cpp.exe table.bin >items-cpp.txt
cmp program.txt items-cpp.txt || fail 'items-cpp.exe gives other items than quorlin.exe'
items items-c.exe dump.bin >items-c.txt
[ "$(wc -l <items-c.txt)" -eq $(($(wc -l <program.txt) + 1)) ] || fail 'items-c.exe gives another number of items'
[ "$(items containers-cpp.exe | tail -n 1)" = '2 Willow' ] || fail 'containers-cpp.exe does not sort'
if wine acpi-cpp.exe NONE 2>errors.txt; then fail 'acpi-cpp.exe shows a table that is not there'; fi
grep -q 'NONE: not available' errors.txt || fail "acpi-cpp.exe says: $(cat errors.txt)"
echo "$(wc -l <program.txt) items of the sample, the same from every program"
