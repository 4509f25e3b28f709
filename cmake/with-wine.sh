#!/usr/bin/env bash
# Runs a command where Windows programs run: with-wine.sh wine test.exe, or a script that calls wine. The prefix is
# build/wine; it is made, and its server started, by whoever comes first.
set -euo pipefail
prefix=$(cd "$(dirname "$0")/.." && pwd)/build/wine
# The crash dialog and helpers that write into the home folder are left out.
export WINEPREFIX=$prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe,winedbg.exe="
unset DISPLAY
export PATH=$PATH:/usr/lib/wine
mkdir -p "$prefix"
# Wine maps a page at 7FFE0000h, and newer kernels put its loader's heap anywhere in the gigabyte around that page. With
# random addresses about one start in 8,000 fails: exit code 1, without a word. A container may refuse fixed ones.
fixed=()
if setarch -R true 2>/dev/null; then fixed=(setarch -R); fi
(
    flock 9
    # It starts a server that stays for a while behind its last program, or fails as there is one. Services inherit the
    # outputs of the program that boots them and would hold a pipe open, so they get none of ours. Not wineboot: it
    # starts a second service manager, which lets no driver start.
    if wineserver -p120 >/dev/null 2>&1 9>&-; then "${fixed[@]}" wine cmd /c exit </dev/null >/dev/null 2>&1 9>&-; fi
) 9>"$prefix.lock"
exec "${fixed[@]}" "$@"
