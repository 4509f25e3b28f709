#!/usr/bin/env bash
# Runs tests of quorlin-fleet in a folder of their own, with the packages of the lock files.
#
#     run.sh BIN FOLDER TEST...    BIN has quorlin; a TEST is a file here
set -euo pipefail
QUORLIN=$(realpath "$1")/quorlin
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$2"
folder=$(realpath "$2")
shift 2
export QUORLIN FLEET_SCRATCH=$folder/scratch

# Installs the packages of a lock file, unless they are there from an earlier run.
install() {
    if cmp -s "$1/package-lock.json" "$2/installed"; then return; fi
    mkdir -p "$2"
    cp "$1"/package*.json "$2"
    (cd "$2" && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error)
    cp "$2/package-lock.json" "$2/installed"
}
install "$here/.." "$folder"
cd "$here/.."
rm -rf "$folder"/{test,queries,scratch} "$folder"/*.mjs
cp -R test queries ./*.mjs quorlin-fleet "$folder"
mkdir "$FLEET_SCRATCH"
cd "$folder"
if [ -f test/engines/package.json ]; then for test in "$@"; do
    if [ "$test" = engines.test.mjs ]; then install test/engines "$folder/engines"; fi
done; fi
node --test --test-reporter=spec "${@/#/test/}"
rm -rf "$FLEET_SCRATCH"
