#!/usr/bin/env bash
# Unpacks the Windows zip and follows its README, under Wine: check-zip.sh ZIP.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
[ -n "${WINEPREFIX:-}" ] || exec "$here/../cmake/with-wine.sh" "$here/check-zip.sh" "$(realpath "$1")"
"$here/../cmake/install-packages.sh" unzip
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "$*" >&2
    exit 1
}

unzip -q "$1" -d "$work"
tree=$(echo "$work"/*)
cd "$tree"

# Files that the README names, and links between the documents, must exist.
while read -r name; do [ -e "${name//\\//}" ] || fail "README.md names $name, which doesn't exist"; done < <(
    # shellcheck disable=SC2016  # the marks of code in Markdown
    grep -oE '`[^` ]+`' README.md | tr -d '`' | grep -E '^(bin|include|lib|Docs)(\\|$)|^[A-Z]+\.md$' | sort -u)
for page in *.md Docs/*.md; do
    while read -r link; do
        [ -e "$(dirname "$page")/$link" ] || fail "$page links to $link, which doesn't exist"
    done < <(grep -oE '\]\([^):#]+[):#]' "$page" | grep -v '^](http' | sed -E 's/^\]\(//; s/.$//' | sort -u)
done

# The README's commands, in its order.
cd bin
count=0
while read -r command; do
    status=0
    echo "@$command" >"$work/command.bat"
    wine cmd /c "$work/command.bat" >"$work/output" 2>"$work/errors" </dev/null || status=$?
    # Some commands exit with 1 and write nothing to standard error.
    if [ "$status" -gt 1 ] || { [ "$status" = 1 ] && [ -s "$work/errors" ]; }; then
        fail "$command exits with $status: $(cat "$work/errors")"
    fi
    count=$((count + 1))
done < <(sed -n 's/^    > \(quorlin.*\)/\1/p' "$tree/README.md" | tr -d '\r')
[ "$count" -ge 5 ] || fail "README.md shows $count commands"
[ -s machine.bin ] || fail 'the README makes no dump'

"$here/Install/windows-tree.sh" "$tree" "$tree/Docs/examples" "$work/examples"
echo "The zip works: $count commands of its README, and its examples"
