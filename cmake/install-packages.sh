#!/bin/sh
# Installs the Debian packages given that are missing; does nothing when all are there. Works as root and with sudo.
set -eu
missing=
for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
done
[ -n "$missing" ] || exit 0
sudo=
[ "$(id -u)" = 0 ] || sudo=sudo
echo "Installing:$missing" >&2
export DEBIAN_FRONTEND=noninteractive
# shellcheck disable=SC2086  # one word a package
$sudo apt-get update -qq
# shellcheck disable=SC2086
$sudo apt-get install -y -qq --no-install-recommends $missing >/dev/null
