#!/bin/sh
# Installs those of the given Debian packages that are missing. Works as root and with sudo.
set -eu
missing=
for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
done
[ -n "$missing" ] || exit 0
sudo=
if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || { echo "These packages are missing:$missing; install them as root" >&2; exit 1; }
    sudo=sudo
fi
echo "Installing:$missing" >&2
# Another package source may still have what is missing.
$sudo apt-get update -qq -o APT::Update::Error-Mode=any || echo "Not all package lists could be downloaded" >&2
# shellcheck disable=SC2086  # one word a package
$sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null || {
    echo "Could not download or install:$missing" >&2
    exit 1
}
