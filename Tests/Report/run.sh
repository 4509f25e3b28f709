#!/usr/bin/env bash
# Opens pages of the program in Chromium. The accessibility rules are from npm; the lock file fixes their version.
#
#     run.sh BIN PICTURES    the folder with quorlin and write_images, and a folder that gets pictures of pages
set -euo pipefail
bin=$(realpath "$1")
mkdir -p "$2"
pictures=$(realpath "$2")
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
if ! getent hosts localhost >/dev/null; then
    # chromedriver needs it. The system's own file stays as it is.
    { cat /etc/hosts && echo 127.0.0.1 localhost; } >"$scratch/hosts"
    unshare -Urm sh -c 'mount --bind "$1" /etc/hosts && shift && exec "$@"' sh "$scratch/hosts" "$0" "$@"
    exit
fi
cp "$here"/package*.json "$scratch"
(cd "$scratch" && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error)
mkdir "$scratch/images"
"$bin/write_images" "$scratch/images"
# Two browsers at a time. Another python3 of the user's may lack selenium.
part() { /usr/bin/python3 -B "$here/report_test.py" "$bin/quorlin" "$scratch" "$pictures" "$1" 2>&1; }
part 0 >"$scratch/log" &
other=$!
failed=0
part 1 || failed=1
wait $other || failed=1
cat "$scratch/log"
exit $failed
