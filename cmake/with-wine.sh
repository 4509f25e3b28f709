#!/usr/bin/env bash
# Runs a command that needs Wine: with-wine.sh wine test.exe, or a script that calls wine. The first caller creates the
# prefix build/wine and starts its server.
set -euo pipefail
prefix=$(cd "$(dirname "$0")/.." && pwd)/build/wine
# Disables the crash dialog, and helpers that write into the home folder.
export WINEPREFIX=$prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe,winedbg.exe="
unset DISPLAY
export PATH=$PATH:/usr/lib/wine
mkdir -p "$prefix"
# Wine maps a page at 7FFE0000h, and newer kernels put its loader's heap anywhere in the gigabyte around that page. With
# random addresses about one start in 8,000 fails: exit code 1, no message. A container may refuse fixed addresses.
fixed=()
if setarch -R true 2>/dev/null; then fixed=(setarch -R); fi
(
    flock 9
    # Starts a server that stays for two minutes after its last program; fails if there is one. Services inherit the
    # outputs of the program that starts them and would keep a pipe open, so they don't get ours. wineboot would start
    # a second service manager, under which no driver starts.
    if wineserver -p120 >/dev/null 2>&1 9>&-; then "${fixed[@]}" wine cmd /c exit </dev/null >/dev/null 2>&1 9>&-; fi
) 9>"$prefix.lock"
exec "${fixed[@]}" "$@"
