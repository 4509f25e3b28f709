#!/bin/sh
# Unpacks a minimal Debian from this machine's own package sources: debian-root.sh CODENAME FOLDER [PACKAGE].
# Needs root.
set -eu
# shellcheck disable=SC2016  # apt's own variables
mirror=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' |
    sed -n "s/ $1 main\$//p" | head -n 1)
[ -n "$mirror" ] || { echo "debian-root: no source of this machine has $1" >&2; exit 1; }
debootstrap --variant=minbase ${3:+--include="$3"} "$1" "$2" "$mirror" >"$2.log" 2>&1 || {
    tail "$2.log" >&2
    echo "debian-root: $1 could not be downloaded or unpacked" >&2
    exit 1
}
