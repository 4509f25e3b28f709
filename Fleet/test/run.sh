#!/usr/bin/env bash
# Runs a command in a copy of the fleet tool with the packages of its lock file.
#
#     run.sh BIN FOLDER COMMAND...    BIN has quorlin; FOLDER gets the copy
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
cd "$here/.."
rm -rf "$folder"/{test,queries,views,scratch} "$folder"/*.mjs
install . "$folder"
if [[ "$*" == *engines* ]]; then install test/engines "$folder/engines"; fi
cp -R test queries views ./*.mjs quorlin-fleet README.md "$folder"
mkdir "$FLEET_SCRATCH"
cd "$folder"
"$@"
rm -rf "$FLEET_SCRATCH"
