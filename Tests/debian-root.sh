#!/bin/sh
# Installs a minimal Debian from this machine's own package sources: debian-root.sh CODENAME FOLDER [PACKAGE,...
# [ARCHITECTURE]]. Needs root. This machine's dpkg unpacks; only the packages' scripts run in the folder, which makes a
# difference where an emulator runs them.
set -eu
# shellcheck disable=SC2016  # apt's own variables
mirror=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' |
    sed -n "s/ $1 main\$//p" | head -n 1)
[ -n "$mirror" ] || { echo "debian-root: no source of this machine has $1" >&2; exit 1; }
mmdebstrap --variant=minbase ${3:+--include="$3"} ${4:+--architectures="$4"} "$1" "$2" "$mirror" >"$2.log" 2>&1 || {
    tail "$2.log" >&2
    echo "debian-root: $1 could not be downloaded or installed" >&2
    exit 1
}
