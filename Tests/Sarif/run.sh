#!/usr/bin/env bash
# Validates the program's SARIF with a validator from npm, whose version the lock file fixes.
#
#     run.sh BIN    the folder with quorlin and write_images
set -euo pipefail
bin=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp "$here"/package*.json "$scratch"
cd "$scratch"
npm ci --ignore-scripts --no-audit --no-fund --loglevel=error
validator=node_modules/@microsoft/sarif-multitool-linux/Sarif.Multitool
chmod u+x $validator

mkdir tables sarif
"$bin/write_images" tables
tables=$here/../../../shared/tables
if [ -d "$tables" ]; then cp "$tables"/*.bin tables; fi
check() { "$bin/quorlin" check --severity note --format sarif "$@" 2>remarks || [ $? -eq 1 ]; }
check --sample >sarif/sample.sarif
for table in tables/*.bin; do check --image "$table" >"sarif/$(basename "$table").sarif"; done

$validator validate 'sarif/*.sarif' >report
# SARIF2005 misses the address of a web page about the program, which has none.
if grep -E ': (error|warning) ' report | grep -v ' SARIF2005:'; then exit 1; fi
# It would tell.
sed 's/"level"/"levle"/' sarif/sample.sarif >bad.sarif
$validator validate bad.sarif >report
grep -q ': error JSON' report || { echo 'The validator finds no fault in a faulty file'; exit 1; }
echo "SARIF: $(find sarif -name '*.sarif' | wc -l) files are valid by the 2.1.0 schema"
