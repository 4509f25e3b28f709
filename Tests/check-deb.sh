#!/bin/sh
# Installs the Debian packages in FOLDER into a new root folder, uses them there, and purges them: check-deb.sh FOLDER
# PROGRAM. They must show what PROGRAM shows, which is quorlin for this machine. Packages for arm64 run in an emulator.
# Needs root or sudo, and the network: the root is a minimal Debian from this machine's own package sources.
set -eu
packages=$(realpath "$1")
program=$(realpath "$2")
cd "$(dirname "$0")/.."
cmake/install-packages.sh mmdebstrap
[ "$(id -u)" = 0 ] || exec sudo --preserve-env=http_proxy,https_proxy,no_proxy Tests/check-deb.sh "$packages" "$program"
architecture=$(dpkg-deb -f "$packages"/quorlin_*.deb Architecture)
machine=$(dpkg --print-architecture)
extra=python3,systemd
if [ "$architecture" != "$machine" ]; then
    cmake/with-arm64.sh true
    extra=python3 # with systemd, the emulator would take a minute longer
fi

fail() {
    echo "check-deb: $*" >&2
    exit 1
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM
root=$work/root
Tests/debian-root.sh "$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)" "$root" "$extra" "$architecture"

inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 "$@"; }

# Lists the root's files, without dpkg's records, logs, the loader's cache, and what lasts until the next boot.
files() {
    (cd "$root" && find . -path ./var/lib/dpkg -prune -o -path ./var/log -prune -o -path ./var/cache -prune -o \
        -path ./run -prune -o -print) | LC_ALL=C sort
}

mkdir -p "$root/var/lib/systemd" # without systemd, its helper for packages makes this folder and leaves it
files >"$work/before"
mkdir "$root/packages"
find "$packages" -name '*.deb' ! -name '*-dbgsym_*' -exec cp {} "$root/packages" \;
inside sh -c 'dpkg -i /packages/*.deb' >"$work/log" 2>&1 || {
    cat "$work/log" >&2
    fail 'dpkg -i fails'
}
rm -r "$root/packages"

libraries=$(dirname "$(find "$root/usr/lib" -name libquorlin.so)")
Tests/check-hardening.sh "$root/usr/bin/quorlin" "$libraries/libquorlin.so" || fail 'the packages are not hardened'

# They show what the program of this machine shows, of an image and of the same image compressed. An example is built
# here against the packages' files, as the root has no compiler.
"$program" --sample --format lines >"$work/program.txt"
[ -s "$work/program.txt" ] || fail "$program shows nothing"
"$program" dump --sample "$work/sample.bin"
"$program" facts --image "$work/sample.bin" --format json >"$work/facts.json"
compiler=$(dpkg-architecture -A"$architecture" -qDEB_TARGET_GNU_TYPE)-gcc
mkdir "$root/test"
"$compiler" -I"$root/usr/include" Docs/examples/items.c -L"$libraries" -Wl,-rpath-link,"$libraries" -lquorlin \
    -o "$root/test/items-c"
cp "$work/facts.json" Tests/same-facts.py "$root/test"
inside quorlin dump --sample /test/dump.bin
cmp "$work/sample.bin" "$root/test/dump.bin" || fail 'quorlin has another sample'
gzip -n <"$work/sample.bin" >"$root/test/dump.bin.gz"
for image in /test/dump.bin /test/dump.bin.gz; do
    inside quorlin --image $image --format lines | cmp "$work/program.txt" - ||
        fail "quorlin shows other items of $image"
    inside /test/items-c $image >"$work/items-c.txt"
    [ "$(wc -l <"$work/items-c.txt")" -eq $(($(wc -l <"$work/program.txt") + 1)) ] ||
        fail "items-c shows another number of items of $image"
    inside python3 -B /test/same-facts.py $image /test/facts.json ||
        fail "the Python package shows other facts of $image"
done
for file in man/man1/quorlin.1.gz man/man3/quorlin.3.gz bash-completion/completions/quorlin \
    zsh/vendor-completions/_quorlin fish/vendor_completions.d/quorlin.fish doc/libquorlin-dev/examples/items.c; do
    [ -e "$root/usr/share/$file" ] || fail "no /usr/share/$file"
done

# The timer is there, and only its user enables it. There is no table in the root folder, so the service fails with 1; a
# wrong option would be 2. These files are the same in all packages.
if [ "$architecture" = "$machine" ]; then
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
fi

inside dpkg --purge python3-quorlin libquorlin-dev libquorlin1 >"$work/log" 2>&1 ||
    fail "purging the library: $(cat "$work/log")"
inside quorlin --image /test/dump.bin --format lines | cmp "$work/program.txt" - || fail 'quorlin does not work alone'
inside dpkg --purge quorlin >"$work/log" 2>&1 || fail "purging the program: $(cat "$work/log")"
rm -r "$root/test"
files >"$work/after"
diff "$work/before" "$work/after" || fail 'purging leaves files, or removes others'
echo "The $architecture packages install, work and can be purged: $(wc -l <"$work/program.txt") items of the sample"
