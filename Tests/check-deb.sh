#!/bin/sh
# Installs the Debian packages in FOLDER into a new root folder, uses them there, and purges them: check-deb.sh FOLDER.
# Needs root or sudo, and the network: the root is a minimal Debian from this machine's own package sources.
set -eu
packages=$(realpath "$1")
cd "$(dirname "$0")/.."
cmake/install-packages.sh debootstrap
[ "$(id -u)" = 0 ] || exec sudo --preserve-env=http_proxy,https_proxy,no_proxy Tests/check-deb.sh "$packages"

fail() {
    echo "check-deb: $*" >&2
    exit 1
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM
root=$work/root
Tests/debian-root.sh "$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)" "$root" python3,systemd

inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 "$@"; }

# Lists the root's files, without dpkg's records, logs, the loader's cache, and what lasts until the next boot.
files() {
    (cd "$root" && find . -path ./var/lib/dpkg -prune -o -path ./var/log -prune -o -path ./var/cache -prune -o \
        -path ./run -prune -o -print) | LC_ALL=C sort
}

files >"$work/before"
mkdir "$root/packages"
find "$packages" -name '*.deb' ! -name '*-dbgsym_*' -exec cp {} "$root/packages" \;
inside sh -c 'dpkg -i /packages/*.deb' >"$work/log" 2>&1 || {
    cat "$work/log" >&2
    fail 'dpkg -i fails'
}
rm -r "$root/packages"

# Runs a program that was built against the packages' files, where there is no compiler.
libraries=$(dirname "$(find "$root/usr/lib" -name libquorlin.so)")
cc -I"$root/usr/include" Docs/examples/items.c -L"$libraries" -lquorlin -o "$root/items-c"
inside quorlin dump --sample /dump.bin
inside quorlin --image /dump.bin --format lines >"$work/program.txt"
[ -s "$work/program.txt" ] || fail 'quorlin shows nothing'
inside /items-c /dump.bin >"$work/items-c.txt"
[ "$(wc -l <"$work/items-c.txt")" -eq $(($(wc -l <"$work/program.txt") + 1)) ] ||
    fail 'items-c shows another number of items'
inside python3 -B -c 'import quorlin
for structure in quorlin.open("/dump.bin"):
    for fact in structure.facts.values(): print(fact)' >"$work/facts.txt" || fail 'the Python package fails'
[ -s "$work/facts.txt" ] || fail 'the Python package shows nothing'
for file in man/man1/quorlin.1.gz man/man3/quorlin.3.gz bash-completion/completions/quorlin \
    zsh/vendor-completions/_quorlin fish/vendor_completions.d/quorlin.fish doc/libquorlin-dev/examples/items.c; do
    [ -e "$root/usr/share/$file" ] || fail "no /usr/share/$file"
done

# The timer is there, and only its user enables it. There is no table in the root folder, so the service fails with 1; a
# wrong option would be 2.
[ "$(inside systemctl is-enabled quorlin-metrics.timer || true)" = disabled ] || fail 'the timer is enabled'
inside systemd-analyze verify --man=no quorlin-metrics.service quorlin-metrics.timer >"$work/log" 2>&1 ||
    fail "the units: $(cat "$work/log")"
[ ! -s "$work/log" ] || fail "the units: $(cat "$work/log")"
command=$(sed -n 's/^ExecStart=//p' "$root/lib/systemd/system/quorlin-metrics.service")
status=0
# shellcheck disable=SC2086  # its words
inside $command >"$work/log" 2>&1 || status=$?
[ "$status" = 1 ] || fail "$command: $status, $(cat "$work/log")"
grep -q 'no SMBIOS table' "$work/log" || fail "$command: $(cat "$work/log")"
inside systemctl --quiet enable quorlin-metrics.timer

inside dpkg --purge python3-quorlin libquorlin-dev libquorlin1 >"$work/log" 2>&1 ||
    fail "purging the library: $(cat "$work/log")"
inside quorlin --image /dump.bin --format lines | cmp "$work/program.txt" - || fail 'quorlin does not work alone'
inside dpkg --purge quorlin >"$work/log" 2>&1 || fail "purging the program: $(cat "$work/log")"
rm "$root/dump.bin" "$root/items-c"
files >"$work/after"
diff "$work/before" "$work/after" || fail 'purging leaves files, or removes others'
echo "The packages install, work and can be purged: $(wc -l <"$work/program.txt") items of the sample"
