#!/bin/sh
# Installs the library into a folder of the build tree, then builds and runs programs against it: the examples in
# Docs/examples, with pkg-config and with find_package, and the host in Tests/Host.
#
#     run.sh SOURCE BUILD      expects CC and CXX
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
mkdir -p "$work/examples"
DESTDIR='' cmake --install "$build" --prefix "$stage" >/dev/null
# A dump without its entry point.
"$stage/bin/quorlin" dump --sample - | tail -c +33 >"$sample"
cp "$source"/Docs/examples/* "$work/examples"
cd "$work"

libraries=$(dirname "$(find "$stage" -name libquorlin.so)")
PKG_CONFIG_PATH=$libraries/pkgconfig
LD_LIBRARY_PATH=$libraries
export PKG_CONFIG_PATH LD_LIBRARY_PATH

python3 "$source/Tests/Install/exports.py" "$libraries/libquorlin.so" "$stage/include/quorlin" \
    "$source/debian/libquorlin1.symbols"

# Each header must compile by itself.
find "$stage/include/quorlin" -name '*.h' | while read -r header; do
    "$CXX" -std=c++20 -Wall -Wextra -Wpedantic -Werror -I"$stage/include/quorlin" -fsyntax-only \
        -x c++ -include "$header" /dev/null
done
for language in 'c -std=c89' 'c -std=c99' 'c++ -std=c++98'; do
    # shellcheck disable=SC2086  # a language and its level
    "$CC" -Wall -Wextra -pedantic -Werror -fsyntax-only -include "$stage/include/quorlin/quorlin_c.h" \
        -x $language /dev/null
done

# shellcheck disable=SC2046  # flags are words
"$CC" -std=c99 -Wall -Wextra -Werror examples/items.c $(pkg-config --cflags --libs quorlin) -o items-c
# shellcheck disable=SC2046
"$CXX" -std=c++20 -Wall -Wextra -Werror examples/items.cpp $(pkg-config --cflags --libs quorlin) -o items-cpp
cmake -S examples -B cmake-build -DCMAKE_PREFIX_PATH="$stage" -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" \
    >/dev/null
cmake --build cmake-build >/dev/null
cmake -S "$source/Tests/Host" -B host-build -DQUORLIN_INCLUDE="$stage/include/quorlin" -DCMAKE_CXX_COMPILER="$CXX" \
    >/dev/null
cmake --build host-build >/dev/null

"$stage/bin/quorlin" --image "$sample" --format lines >program.txt
[ -s program.txt ] || fail 'the installed program shows nothing'
for program in ./items-cpp ./cmake-build/items-cpp "./host-build/host $libraries/libquorlin.so"; do
    $program "$sample" >items.txt || fail "$program fails"
    cmp program.txt items.txt || fail "$program shows other items than quorlin"
done

./items-c "$sample" >items-c.txt
[ "$(wc -l <items-c.txt)" -eq $(($(wc -l <program.txt) + 1)) ] || fail 'items-c shows another number of items'
for program in ./cmake-build/items-c "python3 examples/items.py"; do
    $program "$sample" >items.txt || fail "$program fails"
    cmp items-c.txt items.txt || fail "$program shows other items than items-c"
done
[ "$(./cmake-build/containers-cpp | tail -n 1)" = '2 Willow' ] || fail "containers-cpp doesn't sort"
# The example fails if this machine has no such table, or if this user may not read it.
mcfg=/sys/firmware/acpi/tables/MCFG
if [ -r $mcfg ]; then
    [ "$(./cmake-build/acpi-cpp MCFG)" = "MCFG: $(wc -c <$mcfg) bytes" ] || fail 'acpi-cpp shows another size'
elif ./cmake-build/acpi-cpp MCFG 2>errors.txt; then
    fail "acpi-cpp shows a table that doesn't exist"
fi
if ./items-c "$work/examples/items.c" 2>errors.txt; then fail 'items-c takes its own source for a table'; fi
grep -q 'not a table' errors.txt || fail "items-c says: $(cat errors.txt)"

[ "$(pkg-config --modversion quorlin)" = "$("$stage/bin/quorlin" --version | grep -o '[0-9.]*$')" ] ||
    fail 'quorlin.pc and the program differ in their version'
echo "Every program shows the same $(wc -l <program.txt) items"
