#!/usr/bin/env bash
# Opens the Windows zip and uses it as its README says, under Wine: check-zip.sh ZIP.
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

# Documents that the README names, and links between them.
while read -r name; do [ -e "${name//\\//}" ] || fail "README.md names $name, which is not there"; done < <(
    # shellcheck disable=SC2016  # the marks of code in Markdown
    grep -oE '`[^` ]+`' README.md | tr -d '`' | grep -E '^(bin|include|lib|Docs)(\\|$)|^[A-Z]+\.md$' | sort -u)
for page in *.md Docs/*.md; do
    while read -r link; do
        [ -e "$(dirname "$page")/$link" ] || fail "$page links to $link, which is not there"
    done < <(grep -oE '\]\([^):#]+[):#]' "$page" | grep -v '^](http' | sed -E 's/^\]\(//; s/.$//' | sort -u)
done

# The README's commands, in its order.
cd bin
count=0
while read -r command; do
    status=0
    echo "@$command" >"$work/command.bat"
    wine cmd /c "$work/command.bat" >"$work/output" 2>"$work/errors" </dev/null || status=$?
    # Some commands answer with 1, without a word on standard error.
    if [ "$status" -gt 1 ] || { [ "$status" = 1 ] && [ -s "$work/errors" ]; }; then
        fail "$command ends with $status: $(cat "$work/errors")"
    fi
    count=$((count + 1))
done < <(sed -n 's/^    > \(quorlin.*\)/\1/p' "$tree/README.md" | tr -d '\r')
[ "$count" -ge 5 ] || fail "README.md shows $count commands"
[ -s machine.bin ] || fail 'the README makes no dump'

"$here/Install/windows-tree.sh" "$tree" "$tree/Docs/examples" "$work/examples"
echo "The zip works: $count commands of its README, and its examples"
