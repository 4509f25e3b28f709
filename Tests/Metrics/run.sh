#!/usr/bin/env bash
# Gives metrics of many tables to promtool and to node_exporter's textfile collector: run.sh BIN TOOLS.
# BIN is the folder with quorlin and write_images. TOOLS gets the two tools from Debian's packages, which aren't
# installed, as that would start services.
set -euo pipefail
bin=$(realpath "$1")
mkdir -p "$2"
tools=$(realpath "$2")
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
exporter=
end() {
    [ -z "$exporter" ] || kill "$exporter" || true
    rm -rf "$scratch"
}
trap end EXIT

fail() {
    echo "$*" >&2
    exit 1
}

promtool=$tools/usr/bin/promtool
for package in prometheus prometheus-node-exporter; do
    [ ! -x "$tools/usr/bin/$package" ] || continue
    mkdir "$scratch/$package"
    (cd "$scratch/$package" && apt-get download -qq "$package") >"$scratch/log" 2>&1 ||
        fail "$package could not be downloaded: $(cat "$scratch/log")"
    dpkg -x "$scratch/$package"/*.deb "$tools"
done

# The only collector reads the file that metrics replaces, table by table.
mkdir "$scratch/images" "$scratch/textfile"
"$tools/usr/bin/prometheus-node-exporter" --collector.disable-defaults --collector.textfile \
    --collector.textfile.directory="$scratch/textfile" --web.listen-address=127.0.0.1:0 --web.disable-exporter-metrics \
    >"$scratch/exporter" 2>&1 &
exporter=$!
for _ in $(seq 100); do
    address=$(sed -n 's/.*msg="Listening on" address=//p' "$scratch/exporter")
    [ -z "$address" ] || break
    sleep 0.1
done
[ -n "$address" ] || fail "node_exporter doesn't listen: $(cat "$scratch/exporter")"

"$bin/write_images" "$scratch/images"
images=("$scratch"/images/*.bin)
tables=$here/../../../shared/tables
if [ -d "$tables" ]; then images+=("$tables"/*.bin); fi

file=$scratch/textfile/quorlin.prom
# Whether both tools take the file and node_exporter serves all samples, as it drops those that it has already.
takes() {
    "$promtool" check metrics <"$file" >"$scratch/promtool" 2>&1 && [ ! -s "$scratch/promtool" ] || return
    curl --noproxy '*' -sS --fail "http://$address/metrics" >"$scratch/served" || return
    grep -q '^node_textfile_scrape_error 0$' "$scratch/served" || return
    [ "$(grep -c '^quorlin_' "$scratch/served")" = "$(grep -c '^quorlin_' "$file")" ]
}
check() {
    "$bin/quorlin" metrics --out "$file" "$@" 2>"$scratch/remarks" || fail "$*: $(cat "$scratch/remarks")"
    takes || fail "$*: $(cat "$scratch/promtool" "$scratch/exporter")"
}
check --sample
cp "$file" "$scratch/sample"
for image in "${images[@]}"; do check --image "$image"; done

# They would tell.
for edit in 's/^# HELP quorlin_findings.*//' '/^quorlin_findings/p' 's/} 1$/} one/'; do
    sed "$edit" "$scratch/sample" >"$file"
    ! takes || fail "the tools find no fault after $edit"
done
echo "Metrics: promtool and node_exporter take those of $((${#images[@]} + 1)) tables"
