#!/bin/bash
# Checks the tests with seeded faults: each patch is one fault, and a test that is named in it must fail.
#
#   Tests/Mutants/run.sh [--tree DIR] [--patches DIR] [--only NAME] [--jobs N]
#
#   --tree     the tree to check; this one if absent
#   --patches  the folder of the patches; this script's if absent
#   --only     one patch, without ".patch"; a pattern such as 'container-*' also works
#   --jobs     compilers at a time
#
# Works on a copy in build/mutants of the tree, where each patch leaves a log. Exits with 1 if a fault survives, or if a
# patch doesn't apply or doesn't build.
set -u -o pipefail

here=$(cd "$(dirname "$0")" && pwd)
tree=$here/../..
patches=$here
only='*'
jobs=$(nproc)
while [ $# -gt 1 ]; do
    case $1 in
        --tree) tree=$2 ;;
        --patches) patches=$2 ;;
        --only) only=$2 ;;
        --jobs) jobs=$2 ;;
        *) break ;;
    esac
    shift 2
done
if [ $# != 0 ]; then
    echo "unknown option '$1'; see the head of $0" >&2
    exit 2
fi
tree=$(cd "$tree" && pwd) && patches=$(cd "$patches" && pwd) || exit 2

work=$tree/build/mutants
source=$work/source
build=$work/build
most_seconds=120  # for one suite, as a fault may make it loop
export GTEST_FILTER='-WorstTables.*'  # they take minutes

suites_of() { sed -n 's/^# suites: *//p' "$1"; }

build_suites() {
    local targets=()
    for suite in "$@"; do
        if [ "$suite" = browser ]; then targets+=(quorlin_program write_images); else targets+=("${suite}Test"); fi
    done
    nice cmake --build "$build" -j "$jobs" --target "${targets[@]}"
}

run_suites() {
    find "$build/scratch" -mindepth 2 -delete
    local suite names=
    for suite in "$@"; do
        if [ "$suite" = browser ]; then
            nice "$source/Tests/Report/run.sh" "$build/bin" "$build/report" || return
        else
            names+="${names:+|}$suite"
        fi
    done
    [ -z "$names" ] || nice ctest --test-dir "$build" -R "^($names)\$" --timeout "$most_seconds" \
        --output-on-failure --no-tests=error
}

# Copies the files that a patch names from the tree. The copies are newer than the objects with the fault.
revert() {
    sed -n 's/^+++ b\///p' "$1" | while read -r file; do cp "$tree/$file" "$source/$file"; done
}

shopt -s nullglob
all=("$patches"/$only.patch)
if [ ${#all[@]} = 0 ]; then
    echo "no patch '$only' in $patches" >&2
    exit 2
fi

rm -rf "$work"
mkdir -p "$source"
(cd "$tree" && git ls-files -z --cached --others --exclude-standard -- ':!Tests/Mutants' |
    xargs -0 cp --parents -t "$source" --) || exit 2

if command -v ccache >/dev/null; then
    export CCACHE_BASEDIR=$source CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
read -ra suites < <(for patch in "${all[@]}"; do suites_of "$patch"; done | tr ' ' '\n' | sort -u | tr '\n' ' ')
echo "${#all[@]} faults; building and running without any: ${suites[*]}"
if ! (cmake -G Ninja -S "$source" -B "$build" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O1 &&
    build_suites "${suites[@]}" && run_suites "${suites[@]}") >"$work/unpatched.log" 2>&1; then
    tail -n 40 "$work/unpatched.log"
    echo "the tree fails without a fault; see $work/unpatched.log" >&2
    exit 2
fi

# The result of one patch, in words.
try() {
    local patch=$1 log=$2 suites
    read -ra suites < <(suites_of "$patch")
    patch -d "$source" -p1 --fuzz=3 --batch --forward --no-backup-if-mismatch --reject-file=- <"$patch" >"$log" 2>&1 ||
        { echo "DOESN'T APPLY"; return; }
    build_suites "${suites[@]}" >>"$log" 2>&1 || { echo "DOESN'T BUILD"; return; }
    run_suites "${suites[@]}" >>"$log" 2>&1 && { echo SURVIVED; return; }
    if grep -q -e '\*\*\*Not Run' -e 'No tests were found' "$log"; then
        echo "NOT RUN"
        return
    fi
    local failed
    mapfile -t failed < <(sed -nE -e 's/^\[  FAILED  \] ([A-Za-z0-9_/]*\.[A-Za-z0-9_/]*).*/\1/p' \
        -e 's/^(FAIL|ERROR): (\w+) .*/\2/p' "$log" | sort -u)
    if [ ${#failed[@]} = 0 ]; then
        echo "killed (crash or timeout)"
    else
        echo "killed by ${#failed[@]}: ${failed[*]:0:3}"
    fi
}

for patch in "${all[@]}"; do
    name=$(basename "$patch" .patch)
    began=$SECONDS
    result=$(try "$patch" "$work/$name.log")
    revert "$patch"
    printf '%-42s %4d s  %s\n' "$name" $((SECONDS - began)) "$result" | tee -a "$work/results.txt"
done

echo
echo "killed: $(grep -c ' s  killed' "$work/results.txt") of ${#all[@]}"
! grep -v ' s  killed' "$work/results.txt"
