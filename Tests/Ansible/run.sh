#!/usr/bin/env bash
# Installs the fact with the role on this machine, but in a scratch folder, and reads it with Ansible: run.sh BIN.
# BIN is the folder with quorlin.
set -euo pipefail
program=$(realpath "$1")/quorlin
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    echo "$*" >&2
    exit 1
}

# The system's tools, without a quorlin that is installed, and after what a case puts into bin.
mkdir "$scratch"/{bin,tools,home}
ln -s /usr/bin/* "$scratch/tools"
rm -f "$scratch/tools/quorlin"
facts=$scratch/etc/facts.d
clean=(env -i "PATH=$scratch/bin:$scratch/tools" "HOME=$scratch/home" LC_ALL=C.UTF-8
    ANSIBLE_ROLES_PATH="$here/../../Ansible/roles")
local=(-i 'localhost,' -c local -e ansible_python_interpreter=/usr/bin/python3)

# Runs the program in its place, or something else.
use() {
    printf '#!/bin/sh\n%s\n' "$1" >"$scratch/bin/quorlin"
    chmod 755 "$scratch/bin/quorlin"
}
play() {
    "${clean[@]}" ansible-playbook "${local[@]}" -e "quorlin_facts_path=$facts" "$here/play.yml" >"$scratch/log" 2>&1 ||
        fail "$(cat "$scratch/log")"
    ! grep -i warning "$scratch/log" || fail 'the role warns'
}
# Writes the fact as Ansible has it.
fact() {
    "${clean[@]}" ansible localhost "${local[@]}" -m setup -a "fact_path=$facts gather_subset=!all,!min,local" \
        >"$scratch/log" 2>&1 || fail "$(cat "$scratch/log")"
    ! grep -i warning "$scratch/log" || fail 'the fact warns'
    sed '1s/.*=> {/{/' "$scratch/log" | sorted '["ansible_facts"]["ansible_local"]["quorlin"]'
}
# Takes a part of the JSON on standard input, and writes it in one form.
sorted() { python3 -c "import json, sys; print(json.dumps(json.load(sys.stdin)$1, sort_keys=True))"; }

use "exec $program \"\$@\" --sample"
play
grep -q 'changed=2 ' "$scratch/log" || fail "$(cat "$scratch/log")"
play
grep -q 'changed=0 ' "$scratch/log" || fail "the second time: $(cat "$scratch/log")"
"$program" summary --sample --format ndjson | sorted '' >"$scratch/summary"
fact | diff "$scratch/summary" - || fail 'the fact is another'

# What can't be read is said in the fact, and fails no play.
while IFS='|' read -r does says; do
    if [ "$does" = nothing ]; then rm "$scratch/bin/quorlin"; else use "$does"; fi
    fact >"$scratch/fact"
    grep -q "^{.*\"error\": \".*$says" "$scratch/fact" || fail "$does: $(cat "$scratch/fact")"
done <<CASES
exec $program "\$@" --image "$scratch/no\\"table"|No such file
echo a line; exit 3|quorlin failed
printf '{"a": '; kill -9 \$\$|quorlin failed
nothing|quorlin is not installed
CASES
echo 'Ansible: the role installs the fact once, and the fact is what summary says, or why there is nothing'
